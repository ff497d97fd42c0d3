# Installs the finished build, whole and in parts, into folders of its own, and builds and runs the project
# examples/consumer against it, as somebody does who has only the installed files.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/installed)
set(expected "UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI\n12x nu este un numar\n")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${result}: ${ARGN}\n${output}")
  endif()
endfunction()

function(expect_from)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output)
  string(REPLACE "\r\n" "\n" output "${output}")
  if(NOT result EQUAL 0 OR NOT output STREQUAL expected)
    message(FATAL_ERROR "${result}: ${ARGN}\n${output}")
  endif()
endfunction()

# What a user needs, without what is for compilers and linkers: the program runs.
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/runtime --component Runtime)
file(GLOB_RECURSE for_developers ${WORK}/runtime/*.h ${WORK}/runtime/*.a ${WORK}/runtime/*.cmake ${WORK}/runtime/*.so)
if(for_developers)
  message(FATAL_ERROR "not for users: ${for_developers}")
endif()
execute_process(COMMAND ${EMULATOR} ${WORK}/runtime/bin/kivtools${SUFFIX} words 12
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${output}" output)
if(NOT output STREQUAL "DOUASPREZECE LEI")
  message(FATAL_ERROR "kivtools words 12: ${output}")
endif()
file(GLOB binaries ${WORK}/runtime/bin/* ${WORK}/runtime/${LIBDIR}/*.so*)
foreach(binary IN LISTS binaries)
  execute_process(COMMAND ${NM} ${binary} OUTPUT_VARIABLE symbols ERROR_VARIABLE symbols)
  if(NOT symbols MATCHES "no symbols")
    message(FATAL_ERROR "${binary} is not stripped")
  endif()
endforeach()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
# The installed tree may be moved.
file(RENAME ${prefix} ${WORK}/moved)
set(prefix ${WORK}/moved)

run(${CMAKE_COMMAND} -G Ninja -S ${SOURCE} -B ${WORK}/build -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_STANDARD=20
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
  -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK}/build)

set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs kivtoolsrepack OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
set(by_flags ${WORK}/build/by_pkg_config${SUFFIX})
run(${C_COMPILER} -std=c11 -Wall -Wextra -Wpedantic -Werror ${SOURCE}/c_host.c -o ${by_flags} ${flags})

if(SUFFIX)
  file(COPY ${prefix}/bin/KivToolsRePack.dll DESTINATION ${WORK}/build)
  set(library ${prefix}/bin/KivToolsRePack.dll)
else()
  set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
  set(library ${prefix}/${LIBDIR}/libKivToolsRePack.so)
  expect_from(${WORK}/build/shared_host)
  execute_process(COMMAND ${NM} -D --defined-only ${WORK}/build/libplugin.so OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  if(NOT symbols MATCHES "PrintTotal" OR symbols MATCHES "InLitere")
    message(FATAL_ERROR "a host's plugin publishes more than its own function:\n${symbols}")
  endif()
endif()
expect_from(${EMULATOR} ${WORK}/build/static_host${SUFFIX})
expect_from(${EMULATOR} ${WORK}/build/c_host${SUFFIX})
expect_from(${EMULATOR} ${by_flags})
expect_from(${EMULATOR} ${WORK}/build/loading_host${SUFFIX} ${library})
