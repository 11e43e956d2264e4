# The toolkit: text on Pango (with its Cairo renderer); drawing and timers come from the platform's
# Cairo and GLib.
pkg_check_modules(PANGOCAIRO REQUIRED IMPORTED_TARGET pangocairo)
target_link_libraries(vesperon PUBLIC PkgConfig::PANGOCAIRO)
