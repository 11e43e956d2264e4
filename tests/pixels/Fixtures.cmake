# Reading and writing image files goes through the real JPEG codec plug-in.
if(TARGET vesperon_plugin_jpeg)
  list(APPEND fixture_dependencies vesperon_plugin_jpeg)
endif()
