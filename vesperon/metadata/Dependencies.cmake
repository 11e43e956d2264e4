# ICU: calendars, date formats and time zones of the date texts.
vesperon_pkg_dependency(ICU PUBLIC icu-i18n icu-uc)
# Exempi: parsing, editing and serialising XMP packets.
vesperon_pkg_dependency(EXEMPI PRIVATE exempi-2.0)
# libxml2: XMP sidecar files are read as XML documents first.
vesperon_pkg_dependency(LIBXML2 PRIVATE libxml-2.0)
# libexif: loading and saving of Exif blocks, and its table of tags per IFD.
vesperon_pkg_dependency(EXIF PUBLIC libexif)
