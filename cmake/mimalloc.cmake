# vantorelix_allocator: the library mimalloc in place of malloc, for programs (a module lives with its host's). Linked in,
# so that a program needs nothing beside it. An empty target where it cannot stand in: sanitizers bring a malloc of their
# own.
#
# Without it the whole program takes 1.75 times as long for a clip of 60 joints x 1000 frames, 1.5 times for 1000 objects x
# 250 frames in a Maya file, and `info` of a BVH of 20 MB 1.4 times; shown by a program built without it (cli/CMakeLists.txt),
# in turns: build/bin/vantorelix trails clip.bvh --quiet (clip.bvh: build/bin/vantorelix_bench_clip)
include(cmake/third_party.cmake)
add_library(vantorelix_allocator INTERFACE)
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR VANTORELIX_SANITIZE)
  return()
endif()
vantorelix_third_party(mimalloc mimalloc_folder)
vantorelix_licence(mimalloc)

# What was freed stays with the program: a rebuild frees as much as it takes, and memory that is given back meanwhile comes
# again in the midst of a slice, a page fault each time: without the call 5500 instead of 250 in
# /usr/bin/time -v build/bin/vantorelix_bench --benchmark_filter='rebuild/1000/' --benchmark_min_time=1
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/mimalloc.cpp CONTENT
     "#include <static.c>\nstatic const bool kept = (mi_option_set(mi_option_purge_delay, -1), true);\n")

# As C++, like all else. Objects, not an archive: a linker takes malloc from an archive only if it comes to it first.
add_library(vantorelix_mimalloc OBJECT ${PROJECT_BINARY_DIR}/mimalloc.cpp)
target_include_directories(vantorelix_mimalloc SYSTEM PRIVATE ${mimalloc_folder}/include ${mimalloc_folder}/src)
target_compile_definitions(vantorelix_mimalloc PRIVATE MI_MALLOC_OVERRIDE MI_DEBUG=0)
target_compile_options(vantorelix_mimalloc PRIVATE -ftls-model=initial-exec)
vantorelix_compile_third_party(vantorelix_mimalloc)
target_sources(vantorelix_allocator INTERFACE $<TARGET_OBJECTS:vantorelix_mimalloc>)
