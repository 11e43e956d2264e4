# The toolkit demo on screen: a real GTK 4 window under Xvfb with xdotool input.
add_test(NAME toolkit.gtk-demo-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/toolkit/gtk-demo-test.sh $<TARGET_FILE:toolkit-demo>)
set_tests_properties(toolkit.gtk-demo-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
