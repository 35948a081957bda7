execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT output MATCHES "${EXPECTED}")
  message(FATAL_ERROR "${COMMAND} ended with ${result} and printed\n${output}")
endif()
