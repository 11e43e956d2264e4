# The `vesperon` program, whose command line these tests run.
list(APPEND fixture_dependencies vesperon_tool)
list(APPEND fixture_definitions VESPERON_TOOL="$<TARGET_FILE:vesperon_tool>")
