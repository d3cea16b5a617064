# A fresh copy of the service with the module installed into its packages.
file(REMOVE_RECURSE ${TREE})
file(COPY ${SERVICE}/ DESTINATION ${TREE})
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component python --prefix ${TREE}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
