# Header-only Debian packages that both builds use.
#
# The cross-compiler must not see /usr/include, so each package that is asked for
# is linked into one folder of the build tree: ormidex_host_headers(CLI stb).
set(ORMIDEX_HOST_HEADERS ${CMAKE_BINARY_DIR}/host-headers)

function(ormidex_host_headers)
  file(MAKE_DIRECTORY ${ORMIDEX_HOST_HEADERS})
  foreach(package ${ARGN})
    if(NOT EXISTS /usr/include/${package})
      message(FATAL_ERROR "The headers ${package} are missing: run scripts/setup-debian.sh")
    endif()
    file(CREATE_LINK /usr/include/${package} ${ORMIDEX_HOST_HEADERS}/${package} SYMBOLIC)
  endforeach()
endfunction()
