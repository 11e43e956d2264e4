# The toolkit demo on screen: a real GTK 4 window under Xvfb with xdotool input.
add_test(NAME toolkit.gtk-demo-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/gtk-demo-test.sh $<TARGET_FILE:toolkit-demo>)
set_tests_properties(toolkit.gtk-demo-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# A host window that closes while a menu, a tracking loop or a drag is open ends them and exits.
add_test(NAME toolkit.closing-window-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/closing-window-on-screen-test.sh
          $<TARGET_FILE:closing-window-for-tests>)
set_tests_properties(toolkit.closing-window-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
