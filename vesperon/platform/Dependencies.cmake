# The platform's image objects: colour management on Little CMS, drawing on Cairo.
pkg_check_modules(LCMS2 REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)
target_link_libraries(vesperon PUBLIC PkgConfig::LCMS2 PkgConfig::CAIRO)
