# The platform's image objects: colour management on Little CMS, drawing on Cairo.
vesperon_pkg_dependency(LCMS2 PUBLIC lcms2)
vesperon_pkg_dependency(CAIRO PUBLIC cairo)
