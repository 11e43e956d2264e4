# VESPERON_SANITIZE: build every target (library, plug-ins, programs, tests) with sanitizers.
#   address,undefined  AddressSanitizer and UndefinedBehaviorSanitizer; undefined behaviour aborts
#                      instead of printing and going on, so a test that meets it fails
#   thread             ThreadSanitizer
# Each needs its own build folder: `make check` uses build-asan and build-tsan.
set(VESPERON_SANITIZE "" CACHE STRING "Sanitizers for every target: empty, address,undefined, or thread")
if(VESPERON_SANITIZE)
  set(sanitize_flags -fsanitize=${VESPERON_SANITIZE} -fno-omit-frame-pointer)
  if(VESPERON_SANITIZE MATCHES "undefined")
    list(APPEND sanitize_flags -fno-sanitize-recover=undefined)
  endif()
  if(VESPERON_SANITIZE MATCHES "thread" AND VESPERON_SANITIZE MATCHES "address")
    message(FATAL_ERROR "VESPERON_SANITIZE: thread cannot be combined with address")
  endif()
  add_compile_options(${sanitize_flags})
  add_link_options(${sanitize_flags})
  message(STATUS "Sanitizers: ${VESPERON_SANITIZE}")
endif()
