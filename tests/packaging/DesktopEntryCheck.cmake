# Fails when desktop-file-validate has anything to say: it ends with 0 after mere hints, too.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${VALIDATOR} ${ENTRY}
  OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT said STREQUAL "")
  message(FATAL_ERROR "${ENTRY}: ${result}\n${said}")
endif()
