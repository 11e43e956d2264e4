# The grid of `vesperon browse` offscreen: its sources that need no GTK, built into the tests.
set(browse_dir ${PROJECT_SOURCE_DIR}/tools/vesperon/browse)
list(APPEND fixture_sources
  ${browse_dir}/BrowseCacheWriter.cpp ${browse_dir}/BrowseCells.cpp ${browse_dir}/BrowseCollection.cpp ${browse_dir}/BrowseController.cpp ${browse_dir}/BrowseDayReader.cpp ${browse_dir}/BrowseFolderMonitor.cpp ${browse_dir}/BrowseItemCell.cpp ${browse_dir}/BrowseNotice.cpp ${browse_dir}/BrowsePalette.cpp ${browse_dir}/BrowsePlacesSidebar.cpp ${browse_dir}/BrowsePlacesWatcher.cpp
  ${browse_dir}/BrowsePreferences.cpp ${browse_dir}/BrowseSharedThumbnailStrategy.cpp ${browse_dir}/BrowseSorting.cpp
  ${browse_dir}/BrowseStatusBar.cpp ${PROJECT_SOURCE_DIR}/tools/vesperon/MediaFiles.cpp)
