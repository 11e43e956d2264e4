# The demo runs on screen through the GTK host.
target_link_libraries(toolkit-demo PRIVATE vesperon-gtk)
