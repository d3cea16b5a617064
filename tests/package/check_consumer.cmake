# Installs the component, moves what was installed, builds the consumer against it with nothing else
# of this project in reach, and compares what it prints.

set(expected "configuration: config/base.yaml
errors: app/errors.py
flows: app/main.py
examples: tests/test_add.py tests/test_move.py
")

file(REMOVE_RECURSE ${WORK})
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD} --component page_sources --prefix ${WORK}/installed
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${WORK}/installed ${WORK}/moved)

execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/build -G ${GENERATOR}
    -D CMAKE_PREFIX_PATH=${WORK}/moved -D CMAKE_CXX_COMPILER=${COMPILER}
    "-DCMAKE_CXX_FLAGS=${FLAGS} -Wall -Wextra -Werror"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} --build ${WORK}/build
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${WORK}/build/own_host
  OUTPUT_VARIABLE answer COMMAND_ERROR_IS_FATAL ANY)
if(NOT answer STREQUAL expected)
  message(FATAL_ERROR "The consumer printed\n${answer}instead of\n${expected}")
endif()
