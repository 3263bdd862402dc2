# Converts SVF files in a build with CMake 3.22 or newer, so that what comes out does to the
# devices what they do (-exact), and proves it:
#
#     include(tapforge.cmake)
#     tapforge_convert(vectors FORM ksvf TCK_FREQ 1000000 FILES a.svf b.svf)
#
# The target, here `vectors`, makes a.ksvf and b.ksvf in the build folder. FORM is ksvf, tcl or
# merged.svf. TCK_FREQ is the highest rate in Hz at which the player clocks. FLAGS may be
# more options of tapforge, PROOF_FLAGS those of tapforge-replay.
#
# A file gets its name once it is proved. Its log is a.ksvf.log, which is shown if it is not;
# then no older a.ksvf stays either. When the CMakeLists.txt changes, all is made anew.
if(CMAKE_SCRIPT_MODE_FILE)  # a command of the build, below
  separate_arguments(FLAGS NATIVE_COMMAND "${FLAGS}")
  separate_arguments(PROOF_FLAGS NATIVE_COMMAND "${PROOF_FLAGS}")
  file(REMOVE "${OUTPUT}")
  execute_process(COMMAND "${TAPFORGE}" ${FLAGS} -w -i "${SOURCE}" -o "${OUTPUT}.part"
                  RESULT_VARIABLE status OUTPUT_VARIABLE log ERROR_VARIABLE log)
  if(status STREQUAL "0")
    execute_process(COMMAND "${TAPFORGE_REPLAY}" ${PROOF_FLAGS} "${SOURCE}" "${OUTPUT}.part"
                    RESULT_VARIABLE status OUTPUT_VARIABLE proof ERROR_VARIABLE proof)
  endif()
  file(WRITE "${OUTPUT}.log" "${log}\n${proof}")
  if(NOT status STREQUAL "0")
    file(REMOVE "${OUTPUT}.part")
    message("${log}\n${proof}")
    message(FATAL_ERROR "${OUTPUT} was not made (status ${status})")
  endif()
  file(RENAME "${OUTPUT}.part" "${OUTPUT}")
  return()
endif()

function(tapforge_convert target)
  cmake_parse_arguments(PARSE_ARGV 1 convert "" "FORM;TCK_FREQ" "FILES;FLAGS;PROOF_FLAGS")
  set(flags_ksvf -ksvf)
  set(flags_tcl -tapbus)
  set(flags_merged.svf "")
  if(NOT DEFINED flags_${convert_FORM} OR NOT convert_TCK_FREQ OR convert_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "FORM ksvf, tcl or merged.svf, TCK_FREQ and FILES are needed")
  endif()
  find_program(TAPFORGE tapforge REQUIRED)
  find_program(TAPFORGE_REPLAY tapforge-replay REQUIRED)
  set(rate "-tck_freq ${convert_TCK_FREQ}")
  list(JOIN convert_FLAGS " " flags)
  list(JOIN convert_PROOF_FLAGS " " proof_flags)
  set(outputs)
  foreach(file IN LISTS convert_FILES)
    cmake_path(GET file STEM LAST_ONLY name)
    cmake_path(ABSOLUTE_PATH file)
    set(output "${CMAKE_CURRENT_BINARY_DIR}/${name}.${convert_FORM}")
    add_custom_command(
      OUTPUT "${output}"
      COMMAND "${CMAKE_COMMAND}" -D "TAPFORGE=${TAPFORGE}" -D "TAPFORGE_REPLAY=${TAPFORGE_REPLAY}"
              -D "FLAGS=${flags_${convert_FORM}} -exact ${rate} ${flags}"
              -D "PROOF_FLAGS=${rate} ${proof_flags}" -D "SOURCE=${file}" -D "OUTPUT=${output}"
              -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
      DEPENDS "${file}" "${CMAKE_CURRENT_LIST_FILE}" "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
      COMMENT "Converting and proving ${name}.${convert_FORM}" VERBATIM)
    list(APPEND outputs "${output}")
  endforeach()
  add_custom_target(${target} ALL DEPENDS ${outputs})
endfunction()
