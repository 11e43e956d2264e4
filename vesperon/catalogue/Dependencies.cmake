# SQLite: the catalogue's database, through its C API.
vesperon_pkg_dependency(SQLITE3 PRIVATE sqlite3)
