# The host for Qt applications, on monitors that a file describes and on a real display.
# It and the example read a file beside them, so each has a folder of its own.
file(GLOB qt_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
kiv_add_program(kiv_qt_tests ${qt_sources})
target_include_directories(kiv_qt_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(kiv_qt_tests PRIVATE KivToolsRePack::QtHost GTest::gmock)
target_compile_definitions(kiv_qt_tests PRIVATE QT_NO_KEYWORDS)
set_target_properties(kiv_qt_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qt)
add_test(NAME qt_host COMMAND kiv_qt_tests -platform offscreen:configfile=${CMAKE_CURRENT_LIST_DIR}/screens.json)


kiv_add_program(forms_qt_example ${PROJECT_SOURCE_DIR}/examples/forms-qt/forms.cpp)
target_link_libraries(forms_qt_example PRIVATE KivToolsRePack::QtHost)
set_target_properties(forms_qt_example PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/forms-qt)
file(WRITE ${CMAKE_BINARY_DIR}/forms-qt/LargeFonts.txt "5:4\n")

find_program(KIV_XVFB_RUN xvfb-run)
if(KIV_XVFB_RUN)
  set(display ${KIV_XVFB_RUN} -a -s "-screen 0 1280x1024x24")
  add_test(NAME qt_host_on_a_display COMMAND ${display} $<TARGET_FILE:kiv_qt_tests> -platform xcb)
  set_tests_properties(qt_host_on_a_display PROPERTIES ENVIRONMENT
    LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/leaks.supp:print_suppressions=0)
  # 190 are fixed, 62 the least width of the client's section; the rest is shared 240 to 120. The pictures are docs/images/.
  foreach(size "640;at 320, 392, pnlButoane 190, pnlClient 320, pnlNumar 129"
      "1000;at 140, 392, pnlButoane 190, pnlClient 560, pnlNumar 249")
    list(POP_FRONT size width)
    add_test(NAME forms_qt_${width} COMMAND ${display} $<TARGET_FILE:forms_qt_example> ${width} 240
      ${CMAKE_BINARY_DIR}/forms-qt/forms-qt-${width}.png -platform xcb)
    set_tests_properties(forms_qt_${width} PROPERTIES
      ENVIRONMENT LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/leaks.supp:print_suppressions=0 PASS_REGULAR_EXPRESSION "(^|\n)${size}\n$")
  endforeach()
endif()

# A project that knows nothing of this tree, over what is installed of the component.
if(sanitized EQUAL -1)
  add_test(NAME qt_consumer COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR} -DWORK=${PROJECT_BINARY_DIR}/qt-consumer
    -DSOURCE=${PROJECT_SOURCE_DIR}/examples/forms-qt -DCXX_COMPILER=${CMAKE_CXX_COMPILER}
    -P ${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)
endif()
