# Makes doxygen's sections of the header's own: each begins with a ruled line, the
# last one ends with the extern "C" block. Up to there lines keep their numbers.
function end_section(separator) {
  if (inside) printf "/** @} */%s", separator
  inside = 0
}
/^\/\* ---- .* -+ \*\/$/ {
  end_section(" ")
  gsub(/^\/\* ---- | -+ \*\/$/, "")
  print "/** @name " $0 " */ /** @{ */"
  inside = 1
  next
}
/^#ifdef __cplusplus/ { end_section("\n") }
{ print }
