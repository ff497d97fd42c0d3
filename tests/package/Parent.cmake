# A project that adds this one with add_subdirectory() builds and installs what it uses and nothing else, and each form of
# the library can be built and found without the other.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
set(common -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_C_COMPILER=${C_COMPILER}
  -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_CXX_STANDARD=20)

function(configure name source)
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${source} -B ${WORK}/${name} ${common} ${ARGN}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  set(configured ${result} PARENT_SCOPE)
  string(REGEX REPLACE "[ \n]+" " " output "${output}")
  set(said "${output}" PARENT_SCOPE)
endfunction()

function(expect name source)
  configure(${name} ${source} ${ARGN})
  if(NOT configured EQUAL 0)
    message(FATAL_ERROR "${name} is not configured: ${said}")
  endif()
endfunction()

function(expect_refusal name source words)
  configure(${name} ${source} ${ARGN})
  if(configured EQUAL 0 OR NOT said MATCHES "${words}")
    message(SEND_ERROR "${name}: expected a refusal with \"${words}\", got ${configured}: ${said}")
  endif()
endfunction()

# What a build of everything would make; nothing is compiled for it.
function(expect_to_make name made not_made)
  execute_process(COMMAND ninja -C ${WORK}/${name} -t commands OUTPUT_VARIABLE steps COMMAND_ERROR_IS_FATAL ANY)
  if(NOT steps MATCHES "${made}" OR (not_made AND steps MATCHES "${not_made}"))
    string(REGEX MATCHALL " -o [^ ]+" made_files "${steps}")
    message(SEND_ERROR "${name}: wanted ${made}, not ${not_made} but makes ${made_files}")
  endif()
endfunction()

set(shared "lib(rary)?[ /][^\n]*KivToolsRePack\\.(so|dll)")
set(static "lib/libKivToolsRePack\\.a")
set(program "bin/kivtools")
expect(static ${PARENT} -DLIBRARY_SOURCE=${SOURCE} -DHOST=static)
expect_to_make(static "${static}" "${shared}|${program}|Loader\\.a|googletest")
expect(shared ${PARENT} -DLIBRARY_SOURCE=${SOURCE} -DHOST=shared)
expect_to_make(shared "${shared}" "${static}|${program}|Loader\\.a|googletest")
expect(with_program ${PARENT} -DLIBRARY_SOURCE=${SOURCE} -DHOST=loading -DKIV_APPS=ON -DKIV_INSTALL=ON)
expect_to_make(with_program "${program}" googletest)

# The small one is built, run and installed.
expect(loading ${PARENT} -DLIBRARY_SOURCE=${SOURCE} -DHOST=loading)
expect_to_make(loading "Loader\\.a" "${shared}|${static}|${program}")
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/loading OUTPUT_VARIABLE output ERROR_VARIABLE output
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${EMULATOR} ${WORK}/loading/host${SUFFIX} ${LIBRARY} OUTPUT_VARIABLE output
  COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "^UNAMIEDOUASUTETREIZECISIPATRU LEI")
  message(SEND_ERROR "the parent's program says ${output}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --install ${WORK}/loading --prefix ${WORK}/installed OUTPUT_QUIET
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE installed RELATIVE ${WORK}/installed ${WORK}/installed/*)
if(NOT installed STREQUAL "bin/host${SUFFIX}")
  message(SEND_ERROR "the parent installs ${installed}")
endif()

# One form alone, with the files of the finished build in the place of its own.
file(WRITE ${WORK}/user/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C CXX)
find_package(KivToolsRePack REQUIRED COMPONENTS \${PARTS})\n")
function(expect_alone part made other not_made)
  set(build ${WORK}/only_${part})
  expect(only_${part} ${SOURCE} ${ARGN})
  expect_to_make(only_${part} "${made}" "${not_made}|googletest")
  file(GLOB libraries ${BUILD}/lib/*KivToolsRePack*)
  file(COPY ${libraries} DESTINATION ${build}/lib)
  file(COPY ${BUILD}/bin/kivtools${SUFFIX} DESTINATION ${build}/bin)
  execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --prefix ${build}/prefix OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
  expect(user_of_${part} ${WORK}/user -DPARTS=${part} -DCMAKE_PREFIX_PATH=${build}/prefix)
  expect_refusal(user_without_${other} ${WORK}/user "component ${other} is not installed" -DPARTS=${other}
    -DCMAKE_PREFIX_PATH=${build}/prefix)
endfunction()
expect_alone(Shared "${shared}" Static "${static}" -DKIV_STATIC=OFF -DKIV_QT_HOST=OFF)
expect_alone(Static "${static}" Shared "${shared}|${program}" -DKIV_SHARED=OFF)
expect_refusal(nothing ${SOURCE} "nothing is to be built" -DKIV_SHARED=OFF -DKIV_STATIC=OFF)
expect_refusal(program_alone ${SOURCE} "KIV_APPS needs KIV_SHARED, off in this build" -DKIV_SHARED=OFF -DKIV_APPS=ON)
expect_refusal(tests_of_a_part ${SOURCE} "KIV_TESTS needs KIV_STATIC and KIV_INSTALL" -DKIV_STATIC=OFF -DKIV_INSTALL=OFF
  -DKIV_TESTS=ON)
