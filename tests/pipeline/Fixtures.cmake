# The strategy and thumbnail cache tests read real JPEG files through the JPEG plug-in.
list(APPEND fixture_dependencies vesperon_plugin_jpeg)
# The `vesperon` program, which the thumbs command test runs.
list(APPEND fixture_dependencies vesperon_tool)
list(APPEND fixture_definitions VESPERON_TOOL="$<TARGET_FILE:vesperon_tool>")
