# vesperon_pkg_dependency(PREFIX PUBLIC|PRIVATE MODULE...)
# Finds system libraries through pkg-config and links them to the library `vesperon`, and records
# them for the package files: the installed VesperonConfig.cmake finds PUBLIC ones again under the
# same imported target (PkgConfig::PREFIX), which the exported link interface names, and vesperon.pc
# lists PUBLIC modules in Requires and PRIVATE ones in Requires.private.
# Every pkg-config library of the library goes through here; vesperon_check_package_dependencies()
# stops the configure step when a PkgConfig:: target in the link interface was linked another way.
function(vesperon_pkg_dependency prefix visibility)
  pkg_check_modules(${prefix} REQUIRED IMPORTED_TARGET ${ARGN})
  target_link_libraries(vesperon ${visibility} PkgConfig::${prefix})
  if(visibility STREQUAL "PUBLIC")
    set_property(GLOBAL APPEND PROPERTY VESPERON_PUBLIC_PKG_PREFIXES ${prefix})
    set_property(GLOBAL APPEND PROPERTY VESPERON_PUBLIC_PKG_MODULES ${ARGN})
    # One find line per prefix, in the form the installed config file runs.
    string(JOIN " " modules ${ARGN})
    set_property(GLOBAL APPEND_STRING PROPERTY VESPERON_PUBLIC_PKG_FINDS
      "pkg_check_modules(${prefix} QUIET IMPORTED_TARGET ${modules})\n")
  else()
    set_property(GLOBAL APPEND PROPERTY VESPERON_PRIVATE_PKG_MODULES ${ARGN})
  endif()
endfunction()

function(vesperon_check_package_dependencies)
  get_target_property(interface vesperon INTERFACE_LINK_LIBRARIES)
  get_property(known GLOBAL PROPERTY VESPERON_PUBLIC_PKG_PREFIXES)
  foreach(item ${interface})
    if(item MATCHES "^PkgConfig::(.+)$" AND NOT CMAKE_MATCH_1 IN_LIST known)
      message(FATAL_ERROR "${item} is in the link interface of vesperon but was not added with "
        "vesperon_pkg_dependency(), so the installed package could not find it")
    endif()
  endforeach()
endfunction()
