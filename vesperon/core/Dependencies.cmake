# ICU: string comparison with the platform's options (normalisation, case folding) and the
# current calendar of the path extensions.
vesperon_pkg_dependency(CORE_ICU PRIVATE icu-uc icu-i18n)
