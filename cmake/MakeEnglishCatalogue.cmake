# Collects the English catalogue of the "vesperon" domain from the sources: every
# MCLocalizedString("key", "English"), MCLocalizedStringWithFormat("key", "English", …) and
# MCLocalizableKey{"key", "English"} (a named one too) gives one message, the English wording being the
# translation. Writes a .po file and compiles it with msgfmt.
#
#   cmake -DSOURCES_FILE=<list, one path per line> -DPO=<out.po> -DMO=<out.mo> -DMSGFMT=<msgfmt> -P …
cmake_minimum_required(VERSION 3.20)

file(STRINGS "${SOURCES_FILE}" sources)
set(ws "[ \t\r\n]*")
set(literal "\"([^\"\\\\]*)\"")
set(pattern "(MCLocalizedStringWithFormat|MCLocalizedString|MCLocalizableKey${ws}[A-Za-z_0-9]*)${ws}[({]${ws}${literal}${ws},${ws}${literal}")

set(keys "")
set(body "")
foreach(source IN LISTS sources)
  file(READ "${source}" text)
  string(REGEX MATCHALL "${pattern}" calls "${text}")
  foreach(call IN LISTS calls)
    string(REGEX MATCH "${pattern}" _ "${call}")
    set(key "${CMAKE_MATCH_2}")
    set(english "${CMAKE_MATCH_3}")
    if(key STREQUAL "" OR key IN_LIST keys)
      continue()
    endif()
    list(APPEND keys "${key}")
    file(RELATIVE_PATH where "${CMAKE_CURRENT_LIST_DIR}/.." "${source}")
    string(APPEND body "#: ${where}\nmsgid \"${key}\"\nmsgstr \"${english}\"\n\n")
  endforeach()
endforeach()

list(LENGTH keys count)
file(WRITE "${PO}.tmp" "# English texts of the vesperon domain, collected from the sources at build time.\n"
  "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\"Language: en\\n\"\n\n${body}")
file(COPY_FILE "${PO}.tmp" "${PO}" ONLY_IF_DIFFERENT)
file(REMOVE "${PO}.tmp")
get_filename_component(mo_dir "${MO}" DIRECTORY)
file(MAKE_DIRECTORY "${mo_dir}")
execute_process(COMMAND "${MSGFMT}" --check-format -o "${MO}" "${PO}" RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "msgfmt could not compile ${PO}")
endif()
message(STATUS "English catalogue: ${count} messages")
