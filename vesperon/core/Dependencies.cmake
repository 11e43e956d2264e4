# ICU: string comparison with the platform's options (normalisation, case folding) and the
# current calendar of the path extensions.
pkg_check_modules(CORE_ICU REQUIRED IMPORTED_TARGET icu-uc icu-i18n)
target_link_libraries(vesperon PRIVATE PkgConfig::CORE_ICU)
