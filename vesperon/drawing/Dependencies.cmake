# Badges and drawing: the desktop's symbolic icons are SVG files, drawn with librsvg.
pkg_check_modules(RSVG REQUIRED IMPORTED_TARGET librsvg-2.0)
target_link_libraries(vesperon PRIVATE PkgConfig::RSVG)
