# vantorelix_cgltf: the library that reads glTF, a single header.
#
# Why this one: it hands out the structure of a file and leaves opening buffers and the memory to us. tinygltf, which
# Debian has, decodes every image and buffer by itself, and runs out of stack on 200,000 brackets in a row.
include(cmake/third_party.cmake)
vantorelix_third_party(cgltf cgltf_folder)
vantorelix_licence(cgltf)

file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/cgltf.cpp CONTENT "#define CGLTF_IMPLEMENTATION\n#include <cgltf.h>\n")
add_library(vantorelix_cgltf STATIC ${PROJECT_BINARY_DIR}/cgltf.cpp)
target_include_directories(vantorelix_cgltf SYSTEM PUBLIC ${cgltf_folder})
vantorelix_compile_third_party(vantorelix_cgltf)
