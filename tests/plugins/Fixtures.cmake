# The codec plug-in tests load the real plug-ins from the build's plug-in folder, so those must be
# built first; the image files they read sit in fixtures/ (made by fixtures/make-fixtures.sh).
list(APPEND fixture_dependencies vesperon_plugin_jpeg vesperon_plugin_png vesperon_plugin_video vesperon_plugin_tiff
  vesperon_plugin_webp vesperon_plugin_heif vesperon_plugin_raw)
list(APPEND fixture_definitions PLUGIN_FIXTURES_DIR="${dir}/fixtures")
