# ICU: calendars, date formats and time zones of the date texts.
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-i18n icu-uc)
target_link_libraries(vesperon PUBLIC PkgConfig::ICU)
