# What the headers in include/kivtools/ declare, as lists for the tests and the fuzzer, so that nobody has to keep them:
#   c_functions.inc   KIV_C_FUNCTION(KivPadLeft, "text,length,width,fill,buffer,capacity") for each function of the C
#                     interface whose family is free, KIV_C_SYSTEM_FUNCTION(...) for the others
#   constants.inc     KIV_CONSTANT(KIV_ERROR_DATE) and KIV_CONSTANT(kiv::scriu_nume_luna) for each enumerator
#   headers.inc       #include "kivtools/Text.h" for each header

# Families of the C interface whose functions may be called with any arguments at all: the fuzzer does so.
set(KIV_C_FREE_FAMILIES
  AvlIndex BankAndLocalityCodes Base CodeFaults CodePages Colours Dataset DatasetAggregate DatasetCursor DatasetFilter DateArithmetic DateText FiscalCode Grades LifetimeTracker M1Encoding Money
  NumbersInWords PersonalNumericCode Rounding StringList Strings System TextShaping Transliteration Variants Versions)
# Families that write files, start or end programs, or ask the user: only their own tests call them.
set(KIV_C_SYSTEM_FAMILIES
  Bitmaps DatasetArrow DatasetExchange DatasetPackets FileLists FileTrees Files Floppy Forms Host Paths Processes)

# The header's text without its comments.
function(kiv_read_header header out)
  file(READ ${header} text)
  string(REGEX REPLACE "/\\*[^*]*\\*+([^/*][^*]*\\*+)*/" "" text "${text}")
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# The functions that a header of the C interface declares, each as "name(parameters)".
function(kiv_c_functions header out)
  kiv_read_header(${header} text)
  string(REGEX MATCHALL "KIV_API [^;(]+\\([^;)]*\\)" declarations "${text}")
  list(TRANSFORM declarations REPLACE ".*[ *](Kiv[A-Za-z0-9_]+\\()" "\\1")
  list(TRANSFORM declarations REPLACE "[ \n]+" " ")
  set(${out} "${declarations}" PARENT_SCOPE)
endfunction()

# The enumerators that a public header declares, as C++ spells them.
function(kiv_enumerators header out)
  kiv_read_header(${header} text)
  set(names "")
  set(namespace "")
  set(class "")
  # One enumeration, namespace or class at a time, in the order of the text.
  set(next "\nnamespace (kiv[a-z:]*) \\{|\n(class|struct) (KIV_API )?([A-Za-z]+)[^;{]*\\{|\n( *)enum (class )?([A-Za-z]* ?)[^;{]*\\{([^}]*)\\}")
  while(text MATCHES "${next}")
    set(found "${CMAKE_MATCH_0}")
    if(CMAKE_MATCH_1)
      set(namespace "${CMAKE_MATCH_1}::")
    elseif(CMAKE_MATCH_4)
      set(class "${CMAKE_MATCH_4}::")
    else()
      set(inside "${namespace}")
      if(CMAKE_MATCH_5)  # indented, so within the class
        string(APPEND inside "${class}")
      endif()
      if(CMAKE_MATCH_6)
        string(STRIP "${CMAKE_MATCH_7}" enumeration)
        string(APPEND inside "${enumeration}::")
      endif()
      string(REGEX REPLACE "=[^,]*" "" enumerators "${CMAKE_MATCH_8}")
      string(REGEX MATCHALL "[A-Za-z_0-9]+" enumerators "${enumerators}")
      list(TRANSFORM enumerators PREPEND "${inside}")
      list(APPEND names ${enumerators})
    endif()
    string(FIND "${text}" "${found}" at)
    string(LENGTH "${found}" length)
    math(EXPR at "${at} + ${length}")
    string(SUBSTRING "${text}" ${at} -1 text)
  endwhile()
  set(${out} "${names}" PARENT_SCOPE)
endfunction()

# Writes the lists into FOLDER; a changed header configures the build again.
function(kiv_write_interface_lists folder)
  set(public ${PROJECT_SOURCE_DIR}/include/kivtools)
  file(GLOB c_headers CONFIGURE_DEPENDS ${public}/c/*.h)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${public}/*.h)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${headers})
  set(functions "")
  foreach(header IN LISTS c_headers)
    cmake_path(GET header STEM family)
    if(family IN_LIST KIV_C_FREE_FAMILIES)
      set(entry KIV_C_FUNCTION)
    elseif(family IN_LIST KIV_C_SYSTEM_FAMILIES)
      set(entry KIV_C_SYSTEM_FUNCTION)
    else()
      message(FATAL_ERROR "${header}: add ${family} to one of the two lists of families in cmake/KivCFunctions.cmake")
    endif()
    kiv_c_functions(${header} declared)
    foreach(function IN LISTS declared)
      string(REGEX MATCH "^([^(]+)\\((.*)\\)$" whole "${function}")
      set(name ${CMAKE_MATCH_1})
      string(REGEX REPLACE "[^,]*[ *]([A-Za-z0-9_]+)(,|$)" "\\1\\2" parameters " ${CMAKE_MATCH_2}")
      string(REGEX REPLACE "^ *void$" "" parameters "${parameters}")
      string(APPEND functions "${entry}(${name}, \"${parameters}\")\n")
    endforeach()
  endforeach()
  set(constants "")
  set(includes "")
  foreach(header IN LISTS headers)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${PROJECT_SOURCE_DIR}/include OUTPUT_VARIABLE name)
    string(APPEND includes "#include \"${name}\"\n")
    kiv_enumerators(${header} enumerators)
    foreach(enumerator IN LISTS enumerators)
      string(APPEND constants "KIV_CONSTANT(${enumerator})\n")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${folder}/c_functions.inc CONTENT "${functions}" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/headers.inc CONTENT "${includes}" @ONLY)
  file(CONFIGURE OUTPUT ${folder}/constants.inc CONTENT "${constants}" @ONLY)
endfunction()
