# The toolkit demo on screen: a real GTK 4 window under Xvfb with xdotool input.
add_test(NAME toolkit.gtk-demo-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/gtk-demo-test.sh $<TARGET_FILE:toolkit-demo>)
set_tests_properties(toolkit.gtk-demo-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# A host window that closes while a menu, a tracking loop or a drag is open ends them and exits.
add_test(NAME toolkit.closing-window-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/closing-window-on-screen-test.sh
          $<TARGET_FILE:closing-window-for-tests>)
set_tests_properties(toolkit.closing-window-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# The GTK host's render nodes against the offscreen host's Cairo drawing of the same window.
add_test(NAME toolkit.render-nodes-match-offscreen-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/render-compare-on-screen-test.sh
          $<TARGET_FILE:render-compare-for-tests>)
set_tests_properties(toolkit.render-nodes-match-offscreen-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
