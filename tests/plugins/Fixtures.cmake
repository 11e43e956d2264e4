# The codec plug-in tests load the real plug-ins from the build's plug-in folder, so those must be
# built first; the image files they read sit in fixtures/ (made by fixtures/make-fixtures.sh).
list(APPEND fixture_dependencies vesperon_plugin_jpeg vesperon_plugin_png vesperon_plugin_video vesperon_plugin_tiff
  vesperon_plugin_webp vesperon_plugin_heif vesperon_plugin_raw)
list(APPEND fixture_definitions PLUGIN_FIXTURES_DIR="${dir}/fixtures")

# DNG files with a whole JPEG as their embedded preview, made at build time: no camera raw file can
# be had from the distribution, and none of its tools writes a DNG with previews, so a small
# libtiff program lays one out from what ImageMagick and cjpeg write (fixtures/preview-dng/).
pkg_check_modules(PREVIEW_DNG_TIFF REQUIRED IMPORTED_TARGET libtiff-4)
add_executable(make-preview-dng ${dir}/fixtures/preview-dng/make-preview-dng.cpp)
target_link_libraries(make-preview-dng PRIVATE PkgConfig::PREVIEW_DNG_TIFF)
vesperon_warnings(make-preview-dng)
set(preview_dng_dir ${CMAKE_CURRENT_BINARY_DIR}/plugins/fixtures)
set(preview_dngs ${preview_dng_dir}/preview.dng ${preview_dng_dir}/broken-preview.dng)
foreach(n 2 3 4 5 7 8)
  list(APPEND preview_dngs ${preview_dng_dir}/preview-orient-${n}.dng)
endforeach()
add_custom_command(OUTPUT ${preview_dngs}
  COMMAND bash ${dir}/fixtures/preview-dng/make-preview-dngs.sh $<TARGET_FILE:make-preview-dng> ${preview_dng_dir}
  DEPENDS make-preview-dng ${dir}/fixtures/preview-dng/make-preview-dngs.sh
  COMMENT "Making the DNG fixtures with embedded previews"
  VERBATIM)
add_custom_target(plugins_preview_dng_fixtures DEPENDS ${preview_dngs})
list(APPEND fixture_dependencies plugins_preview_dng_fixtures)
list(APPEND fixture_definitions RAW_PREVIEW_FIXTURES_DIR="${preview_dng_dir}")
