# Small libraries whose version resources the tests read, made by the system's own resource compiler for both kinds of
# image: CEVersionInfo/data/NAME.rc gives NAME_i686.dll and NAME_x86_64.dll. Without the compiler the tests skip them.
file(GLOB version_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/data/*.rc)
set(KIV_VERSION_FILES ${CMAKE_CURRENT_BINARY_DIR}/version_files)
set(version_files)
file(MAKE_DIRECTORY ${KIV_VERSION_FILES})
foreach(machine i686 x86_64)
  find_program(KIV_WINDRES_${machine} ${machine}-w64-mingw32-windres)
  find_program(KIV_LINKER_${machine} ${machine}-w64-mingw32-ld)
  if(NOT KIV_WINDRES_${machine} OR NOT KIV_LINKER_${machine})
    continue()
  endif()
  foreach(source ${version_sources})
    cmake_path(GET source STEM name)
    set(file ${KIV_VERSION_FILES}/${name}_${machine})
    add_custom_command(OUTPUT ${file}.dll DEPENDS ${source}
      COMMAND ${KIV_WINDRES_${machine}} -O coff ${source} ${file}.o
      COMMAND ${KIV_LINKER_${machine}} -shared -s --no-insert-timestamp -e 0 ${file}.o -o ${file}.dll)
    list(APPEND version_files ${file}.dll)
  endforeach()
endforeach()
add_custom_target(kiv_version_files DEPENDS ${version_files})
