# Fails unless SCRIPT, run by PYTHON, prints what the file EXPECTED holds. OUTPUT is for its output.
execute_process(COMMAND ${PYTHON} ${SCRIPT} OUTPUT_FILE ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${EXPECTED}
  COMMAND_ERROR_IS_FATAL ANY)
