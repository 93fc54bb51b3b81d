# What `make install` puts where, and the packages made of it.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS ormidex EXPORT OrmidexTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
if(ORMIDEX_BUILD_TOOL)
  install(TARGETS ormidex_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
install(FILES include/ormidex.h include/ormidex.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Ormidex)
install(EXPORT OrmidexTargets NAMESPACE Ormidex:: DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(cmake/OrmidexConfig.cmake.in OrmidexConfig.cmake
  INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(OrmidexConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrmidexConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OrmidexConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The prefix is found from the file's own place, so that an installed tree may move.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE pc_prefix)
configure_file(cmake/ormidex.pc.in ormidex.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ormidex.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# Debian's python3 looks into this folder below /usr/local and below /usr.
set(python_version "import sys; print('%d.%d' % sys.version_info[:2])")
execute_process(COMMAND /usr/bin/python3 -c "${python_version}"
  OUTPUT_VARIABLE python_version OUTPUT_STRIP_TRAILING_WHITESPACE)
set(ORMIDEX_PYTHON_INSTALL_DIR lib/python${python_version}/dist-packages
    CACHE STRING "Folder of the Python module")
install(DIRECTORY python/ormidex DESTINATION ${ORMIDEX_PYTHON_INSTALL_DIR} COMPONENT tools
  FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed")

# Manual pages: the tool's is written by hand, the functions' come from the header.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_custom_command(OUTPUT man3/ormidex.3
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/scripts/make_man.py
          ${PROJECT_SOURCE_DIR}/include/ormidex.h ${CMAKE_CURRENT_BINARY_DIR}/man3
  DEPENDS include/ormidex.h scripts/make_man.py)
add_custom_target(ormidex_man ALL DEPENDS man3/ormidex.3)
install(DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/man3 DESTINATION ${CMAKE_INSTALL_MANDIR}
  COMPONENT development FILES_MATCHING PATTERN "*.3")
install(FILES docs/man/ormidex.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES completions/ormidex.bash RENAME ormidex
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
