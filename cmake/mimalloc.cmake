# vantorelix_allocator: the library mimalloc in place of malloc, for programs (a module lives with its host's). A trail is
# some sixty small objects that stay, for which it is the faster one (docs/speed.md). Linked in, so that a program needs
# nothing beside it. An empty target where it cannot stand in: sanitizers bring a malloc of their own.
include(cmake/third_party.cmake)
add_library(vantorelix_allocator INTERFACE)
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR VANTORELIX_SANITIZE)
  return()
endif()
set(mimalloc_crate 0.1.44) # of the package; the library in it is 2.2.4
set(mimalloc_inside libmimalloc-sys/c_src/mimalloc/v2)

function(vantorelix_fetch_mimalloc work remedy result)
  vantorelix_fetch_crates(${work} mimalloc ${remedy} libmimalloc-sys=${mimalloc_crate} cc=1.0.83 libc=0.2.150)
  set(${result} ${work}/vendor/${mimalloc_inside} PARENT_SCOPE)
endfunction()

file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/mimalloc.sha256 lines)
set(files "")
foreach(line IN LISTS lines)
  if(line MATCHES "^([0-9a-f]+)  (.+)$")
    list(APPEND files ${CMAKE_MATCH_2} ${CMAKE_MATCH_1})
  endif()
endforeach()
vantorelix_third_party(mimalloc mimalloc-2.2.4 "${mimalloc_inside} of the Rust package libmimalloc-sys ${mimalloc_crate}"
                       ${files})
set(mimalloc_folder ${VANTORELIX_THIRD_PARTY}/mimalloc-2.2.4)

# What was freed stays with the program: a rebuild frees as much as it takes, and memory that is given back meanwhile comes
# again in the midst of a slice, a page fault each time (docs/speed.md). The library has a variable of the environment for
# it, and this call.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/mimalloc.cpp CONTENT
     "#include <static.c>\nstatic const bool kept = (mi_option_set(mi_option_purge_delay, -1), true);\n")

# As C++, like all else. Objects, not an archive: a linker takes malloc from an archive only if it comes to it first.
add_library(vantorelix_mimalloc OBJECT ${PROJECT_BINARY_DIR}/mimalloc.cpp)
target_include_directories(vantorelix_mimalloc SYSTEM PRIVATE ${mimalloc_folder}/include ${mimalloc_folder}/src)
target_compile_definitions(vantorelix_mimalloc PRIVATE MI_MALLOC_OVERRIDE MI_DEBUG=0)
target_compile_options(vantorelix_mimalloc PRIVATE -ftls-model=initial-exec)
vantorelix_compile_third_party(vantorelix_mimalloc)
target_sources(vantorelix_allocator INTERFACE $<TARGET_OBJECTS:vantorelix_mimalloc>)
