# Badges and drawing: the desktop's symbolic icons are SVG files, drawn with librsvg.
vesperon_pkg_dependency(RSVG PRIVATE librsvg-2.0)
