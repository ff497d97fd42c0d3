# The library's sources are what the folders hold: a new file needs no list. kiv_library_sources(PATTERN...) adds those of
# the calling folder; a pattern is a path from there, "**" goes through the folders below.
function(kiv_library_sources)
  foreach(pattern ${ARGN})
    if(pattern MATCHES "\\*\\*/")
      string(REPLACE "**/" "" pattern ${pattern})
      file(GLOB_RECURSE found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${pattern})
    else()
      file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${pattern})
    endif()
    target_sources(kiv_sources INTERFACE ${found})
  endforeach()
endfunction()

# What every target of this build shares.
function(kiv_setup_target target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow $<$<COMPILE_LANGUAGE:CXX>:-Wconversion>)
  # g++ 12 reports overlapping copies inside std::string's own operator+ where there are none, and takes what a variant
  # does not hold for something that is read unset.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict$<SEMICOLON>-Wno-maybe-uninitialized>)
  if(KIV_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(WIN32)
    target_compile_definitions(${target} PRIVATE UNICODE _UNICODE STRICT NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      # SSE2 gives doubles the same results as on 64-bit; hosts of other compilers call with a 4-byte aligned stack.
      # Where g++ 12 puts the rare paths of a function apart that aligns its stack, an exception does not find its way
      # out of it: the program ends.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse -mstackrealign -fno-reorder-blocks-and-partition)
    else()
      # The compiler keeps 32-byte vectors on a stack that this system aligns to 16 bytes only; unaligned moves are safe.
      target_compile_options(${target} PRIVATE -Wa,-muse-unaligned-vector-move)
    endif()
    # Programs and the library need nothing beside them but the system's own libraries.
    target_link_options(${target} PRIVATE -static -static-libgcc -static-libstdc++)
    # The same sources give the same file.
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp)
  endif()
endfunction()

# What every library of this build shares: its headers, as seen here and once installed, and what it is built on.
function(kiv_setup_library target)
  kiv_setup_target(${target})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_compile_definitions(${target} PRIVATE KIV_VERSION="${PROJECT_VERSION}")
  target_link_libraries(${target} PRIVATE ${KIV_SYSTEM_LIBRARIES})
  if(NOT PROJECT_IS_TOP_LEVEL AND NOT KIV_INSTALL)
    # Of another project's build this is made where something links it.
    set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
endfunction()

# What both forms of the library share beside that. On Linux they are made from one compilation: what is published is
# settled when the shared library is linked. On Windows it is marked in the objects themselves, so each form has its own.
function(kiv_setup_form target)
  kiv_setup_library(${target})
  add_library(KivToolsRePack::${target} ALIAS ${target})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME KivToolsRePack)
  if(WIN32)
    target_sources(${target} PRIVATE ${KIV_SOURCES})
    return()
  endif()
  if(NOT TARGET kiv_objects)
    add_library(kiv_objects OBJECT ${KIV_SOURCES})
    kiv_setup_library(kiv_objects)
    # Nobody puts a function of his own in the place of one of these, so they may be inlined.
    target_compile_options(kiv_objects PRIVATE -fno-semantic-interposition)
  endif()
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:kiv_objects>)
endfunction()

function(kiv_add_shared_library target)
  add_library(${target} SHARED ${KIV_SHARED_ONLY_SOURCES})
  kiv_setup_form(${target})
  target_compile_definitions(${target} PRIVATE KIV_BUILDING)
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
    kiv_add_version_resource(${target} "${PROJECT_DESCRIPTION}" 0x2)
    # Windows looks for a program's libraries beside the program.
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/bin
      COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${target}> ${CMAKE_BINARY_DIR}/bin)
  else()
    target_link_options(${target} PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  endif()
  # What the static parts of the compiler's run-time library bring along is not published.
  target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${KIV_INTERFACE} RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
endfunction()

function(kiv_add_static_library target)
  add_library(${target} STATIC)
  kiv_setup_form(${target})
  target_compile_definitions(${target} PUBLIC KIV_STATIC)
  if(NOT WIN32)
    # A host's own shared library that holds this one does not publish it.
    target_link_options(${target} INTERFACE -Wl,--exclude-libs,libKivToolsRePack.a)
  endif()
endfunction()

# What Windows shows of a file: kiv_add_version_resource(TARGET DESCRIPTION KIND), KIND being 0x1 for a program and 0x2 for a
# library. The rest is what project() and LICENSE say.
function(kiv_add_version_resource target KIV_FILE_DESCRIPTION KIV_FILE_KIND)
  file(STRINGS ${PROJECT_SOURCE_DIR}/LICENSE KIV_COPYRIGHT REGEX "^Copyright ")
  string(REGEX REPLACE "^Copyright \\(c\\) [0-9-]+ " "" KIV_AUTHORS "${KIV_COPYRIGHT}")
  string(REPLACE . , KIV_VERSION_NUMBERS ${PROJECT_VERSION}.0)
  set(KIV_INTERNAL_NAME ${target})
  if(KIV_FILE_KIND EQUAL 0x1)
    set(KIV_FILE_NAME ${target}${CMAKE_EXECUTABLE_SUFFIX})
  else()
    set(KIV_FILE_NAME ${target}${CMAKE_SHARED_LIBRARY_SUFFIX})
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

# The part of the library that loads the rest at run time.
function(kiv_add_loader target)
  add_library(${target} STATIC ${ARGN})
  add_library(KivToolsRePack::KivToolsRePackLoader ALIAS ${target})
  kiv_setup_library(${target})
  target_compile_definitions(${target} PUBLIC KIV_STATIC)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME KivToolsRePackLoader EXPORT_NAME KivToolsRePackLoader)
endfunction()

# A program of this build that links the static library and may see its inner headers.
function(kiv_add_program target)
  add_executable(${target} ${ARGN})
  kiv_setup_target(${target})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()
