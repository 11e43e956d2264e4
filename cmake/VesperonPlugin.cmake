# vesperon_add_plugin(NAME SOURCES... [LIBRARIES ...] [OUTPUT_DIRECTORY DIR] [NO_MANIFEST])
# Builds a codec plug-in: a shared module named NAME.vcodec in the plug-in folder, linked against
# the library it plugs into, and beside it its manifest NAME.vcodec.json, written from the loaded
# module, through which programs register the plug-in without loading it until they need it.
set(VESPERON_PLUGIN_SUFFIX ".vcodec")
function(vesperon_add_plugin name)
  cmake_parse_arguments(P "NO_MANIFEST" "OUTPUT_DIRECTORY" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT P_OUTPUT_DIRECTORY)
    set(P_OUTPUT_DIRECTORY ${VESPERON_PLUGIN_OUTPUT_DIR})
  endif()
  set(target vesperon_plugin_${name})
  add_library(${target} MODULE ${P_SOURCES})
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name} SUFFIX ${VESPERON_PLUGIN_SUFFIX}
    LIBRARY_OUTPUT_DIRECTORY ${P_OUTPUT_DIRECTORY} CXX_VISIBILITY_PRESET hidden)
  target_link_libraries(${target} PRIVATE vesperon ${P_LIBRARIES})
  vesperon_warnings(${target})
  # NO_MANIFEST is for test modules that are meant not to load. The tool loads the module: no leak
  # check in sanitized builds, where the codec's libraries keep allocations for the process's life.
  if(NOT P_NO_MANIFEST)
    add_dependencies(${target} vesperon-codec-manifest)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0
        $<TARGET_FILE:vesperon-codec-manifest> $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.json
      VERBATIM)
  endif()
  if(NOT P_OUTPUT_DIRECTORY STREQUAL VESPERON_PLUGIN_OUTPUT_DIR)
    return()
  endif()
  install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${VESPERON_PLUGIN_SUBDIR})
  install(FILES $<TARGET_FILE:${target}>.json DESTINATION ${CMAKE_INSTALL_LIBDIR}/${VESPERON_PLUGIN_SUBDIR})
endfunction()
