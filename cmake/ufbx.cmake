# vantorelix_ufbx: the library that reads FBX, compiled from its source.
include(cmake/third_party.cmake)
vantorelix_third_party(ufbx ufbx_folder)

# As C++, which C compilers and toolchains without one need not be found for.
add_library(vantorelix_ufbx STATIC ${ufbx_folder}/ufbx.c)
set_source_files_properties(${ufbx_folder}/ufbx.c PROPERTIES LANGUAGE CXX)
target_include_directories(vantorelix_ufbx SYSTEM PUBLIC ${ufbx_folder})
target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_MINIMAL UFBX_ENABLE_SCENE_EVALUATION)
vantorelix_compile_third_party(vantorelix_ufbx)
if(VANTORELIX_SANITIZE)
  target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_UBSAN UFBX_NO_UNALIGNED_LOADS)
endif()
