# The GTK predicate editor in a window of its own under Xvfb, driven by xdotool.
add_test(NAME predicates.predicate-editor-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/predicates/predicate-editor-on-screen-test.sh
          $<TARGET_FILE:predicate-editor-for-tests>)
set_tests_properties(predicates.predicate-editor-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
