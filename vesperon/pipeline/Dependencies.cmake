# Thumbnail cache entries are compressed with zlib directly (see MCFreedesktopThumbnailCache).
vesperon_pkg_dependency(PIPELINE_ZLIB PRIVATE zlib)
