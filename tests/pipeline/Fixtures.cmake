# The strategy and thumbnail cache tests read real JPEG files through the JPEG plug-in.
list(APPEND fixture_dependencies vesperon_plugin_jpeg)
