# The strategy and thumbnail cache tests read real JPEG files through the JPEG plug-in.
list(APPEND fixture_dependencies vesperon_plugin_jpeg)
# The `vesperon` program, which the thumbs command test runs, and the WebP plug-in it reads an
# animation with.
list(APPEND fixture_dependencies vesperon_tool vesperon_plugin_webp)
list(APPEND fixture_definitions VESPERON_TOOL="$<TARGET_FILE:vesperon_tool>")
# A codec plug-in that throws for files whose names ask it to, in a fixture folder of its own that
# the fault tests register.
set(pipeline_fixture_plugins ${CMAKE_CURRENT_BINARY_DIR}/pipeline/fixture-plugins)
vesperon_add_plugin(test_throwing SOURCES ${dir}/plugins/ThrowingCodec.cpp OUTPUT_DIRECTORY ${pipeline_fixture_plugins})
list(APPEND fixture_dependencies vesperon_plugin_test_throwing vesperon_plugin_png)
list(APPEND fixture_definitions PIPELINE_FIXTURE_PLUGINS="${pipeline_fixture_plugins}")
