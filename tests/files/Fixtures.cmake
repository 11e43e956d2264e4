# The file actions of `vesperon browse` on screen under Xvfb, driven by xdotool.
add_test(NAME files.browse-files-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/files/browse-files-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples)
set_tests_properties(files.browse-files-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120 LABELS files)
