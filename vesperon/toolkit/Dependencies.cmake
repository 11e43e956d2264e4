# The toolkit: text on Pango (with its Cairo renderer); drawing and timers come from the platform's
# Cairo and GLib.
vesperon_pkg_dependency(PANGOCAIRO PUBLIC pangocairo)
