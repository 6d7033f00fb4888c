# vantorelix_ufbx: the library that reads FBX, compiled from its source.
include(cmake/third_party.cmake)
vantorelix_third_party(ufbx ufbx_folder)
vantorelix_licence(ufbx)

# As C++, which C compilers and toolchains without one need not be found for, and with our sine and its like.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/ufbx.cpp CONTENT "#include \"standalone/formats/fbx/fbx_mathematics.h\"
#define UFBX_MATH_PREFIX vantorelix_ufbx_
#include <ufbx.c>
")
add_library(vantorelix_ufbx STATIC ${PROJECT_BINARY_DIR}/ufbx.cpp)
target_include_directories(vantorelix_ufbx SYSTEM PUBLIC ${ufbx_folder})
target_include_directories(vantorelix_ufbx PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(vantorelix_ufbx PRIVATE vantorelix_base)
target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_MINIMAL UFBX_ENABLE_SCENE_EVALUATION)
vantorelix_compile_third_party(vantorelix_ufbx)
if(VANTORELIX_SANITIZE)
  target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_UBSAN UFBX_NO_UNALIGNED_LOADS)
endif()
