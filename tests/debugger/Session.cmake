# gdb loads the printers with the library, and what a page shows is what it prints, but for addresses.
file(READ ${PAGE} text)
set(gdb ${GDB} -nx -quiet -batch -iex "add-auto-load-safe-path ${LIBRARIES}" -ex "set width 0")

# gdb 13 cannot call functions of a program on processors with more state than it knows, such as AMX.
execute_process(COMMAND ${gdb} -ex "break main" -ex run -ex "print (int)getpid() > 0" ${PROGRAM}
  OUTPUT_VARIABLE output ERROR_VARIABLE output)
set(sessions session core)
if(NOT output MATCHES "\\$1 = true")
  message("Not tried, as gdb cannot call functions here: session")
  set(sessions core)
endif()

foreach(commands ${sessions})
  execute_process(COMMAND ${gdb} -x ${CMAKE_CURRENT_LIST_DIR}/${commands} ${PROGRAM}
    WORKING_DIRECTORY ${SCRATCH} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE result)
  string(REGEX MATCHALL "(\\(gdb\\) print|\\$[0-9]+ =) [^\n]*\n" lines "${output}")
  list(JOIN lines "    " shown)
  string(REGEX REPLACE "0x[0-9a-f]+" "0x…" shown "    ${shown}")
  string(FIND "${text}" "${shown}" place)
  if(shown STREQUAL "" OR place EQUAL -1)
    message(SEND_ERROR "${PAGE} does not show what gdb prints:\n${shown}\nof\n${output}")
  endif()
endforeach()
