# A GTK application of its own: it needs the host, which brings GTK. Its CMakeLists.txt builds it
# out of tree against an installed Vesperon.
target_link_libraries(folder-browser PRIVATE vesperon-gtk)
