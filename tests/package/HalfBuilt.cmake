# A build of which only a part was made is not installed at all, and the message says which file is missing.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G Ninja -DKIV_TESTS=OFF -DCMAKE_BUILD_TYPE=Release
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${WORK}/build --prefix ${WORK}/installed
  RESULT_VARIABLE result ERROR_VARIABLE message)
if(result EQUAL 0 OR NOT message MATCHES "nothing is installed:.*libKivToolsRePack|nothing is installed:.*KivToolsRePack.dll")
  message(FATAL_ERROR "${result}: ${message}")
endif()
if(EXISTS ${WORK}/installed)
  message(FATAL_ERROR "a part is installed")
endif()
