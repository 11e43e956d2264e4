# `vesperon browse` on screen under Xvfb, driven by xdotool, and its offscreen render.
add_test(NAME browser.browse-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/browser/browse-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples $<TARGET_FILE:drop-target-for-tests>)
set_tests_properties(browser.browse-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# Its filter bar, on screen: the grid narrowed as the rows change, checked against `vesperon find`.
add_test(NAME browser.browse-filter-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/browser/browse-filter-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples)
set_tests_properties(browser.browse-filter-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# Its thumbnail size on screen: Ctrl+wheel, Ctrl+minus, the slider, remembered between runs.
add_test(NAME browser.browse-grid-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/browser/browse-grid-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples)
set_tests_properties(browser.browse-grid-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# Its right-click menu whole, Delete to the trash with the selection moving on, and Undo.
add_test(NAME browser.browse-trash-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/browser/browse-trash-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples)
set_tests_properties(browser.browse-trash-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)

# What a screen reader gets from `vesperon browse` over a real accessibility bus, read with pyatspi.
add_test(NAME browser.browse-accessibility-on-screen
  COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/browser/browse-accessibility-on-screen-test.sh $<TARGET_FILE:vesperon_tool>
          ${PROJECT_SOURCE_DIR}/samples)
set_tests_properties(browser.browse-accessibility-on-screen PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
