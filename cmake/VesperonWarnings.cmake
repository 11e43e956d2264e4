# Warnings for the project's own targets; third-party headers come in as system includes.
function(vesperon_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
