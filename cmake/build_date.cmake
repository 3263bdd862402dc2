# The banner names the date of the build. SOURCE_DATE_EPOCH, seen when the build
# is configured, stands in for the clock, so that equal sources give equal bytes.
function(set_build_date source)
  if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    return()
  endif()
  # The compiler's own form: "Nov  6 2018", the day padded with a blank.
  string(TIMESTAMP date "%b %d %Y" UTC)
  string(REGEX REPLACE " 0([0-9]) " "  \\1 " date "${date}")
  string(TIMESTAMP time "%H:%M:%S" UTC)
  set_source_files_properties(${source} PROPERTIES
    COMPILE_DEFINITIONS "TAPFORGE_BUILD_DATE=\"${date}\";TAPFORGE_BUILD_TIME=\"${time}\"")
endfunction()
