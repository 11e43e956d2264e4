# The pixel kernels are plain loops written for the vectoriser; -O3 lets GCC vectorise loops
# whose trip count is not a multiple of the vector width (the -O2 cost model does not).
file(GLOB pixel_kernel_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/MCBitmap*.cpp)
set_source_files_properties(${pixel_kernel_sources} TARGET_DIRECTORY vesperon PROPERTIES COMPILE_OPTIONS "-O3")
