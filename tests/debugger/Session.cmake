# gdb loads the printers with the library, and what a page shows is what it prints, but for addresses.
file(READ ${PAGE} text)
foreach(commands session core)
  execute_process(
    COMMAND ${GDB} -nx -quiet -batch -iex "add-auto-load-safe-path ${LIBRARIES}" -ex "set width 0"
      -x ${CMAKE_CURRENT_LIST_DIR}/${commands} ${PROGRAM}
    WORKING_DIRECTORY ${SCRATCH} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  string(REGEX MATCHALL "(\\(gdb\\) print|\\$[0-9]+ =) [^\n]*\n" lines "${output}")
  list(JOIN lines "    " shown)
  string(REGEX REPLACE "0x[0-9a-f]+" "0x…" shown "    ${shown}")
  string(FIND "${text}" "${shown}" place)
  if(shown STREQUAL "" OR place EQUAL -1)
    message(SEND_ERROR "${PAGE} does not show what gdb prints:\n${shown}\nof\n${output}")
  endif()
endforeach()
