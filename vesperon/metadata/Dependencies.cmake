# ICU: calendars, date formats and time zones of the date texts.
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-i18n icu-uc)
target_link_libraries(vesperon PUBLIC PkgConfig::ICU)
# Exempi: parsing, editing and serialising XMP packets.
pkg_check_modules(EXEMPI REQUIRED IMPORTED_TARGET exempi-2.0)
target_link_libraries(vesperon PRIVATE PkgConfig::EXEMPI)
# libxml2: XMP sidecar files are read as XML documents first.
pkg_check_modules(LIBXML2 REQUIRED IMPORTED_TARGET libxml-2.0)
target_link_libraries(vesperon PRIVATE PkgConfig::LIBXML2)
# libexif: loading and saving of Exif blocks, and its table of tags per IFD.
pkg_check_modules(EXIF REQUIRED IMPORTED_TARGET libexif)
target_link_libraries(vesperon PUBLIC PkgConfig::EXIF)
