# vantorelix_ufbx: the library that reads FBX, compiled from its source. The source comes as a Rust package, because
# that is how its author publishes it; nothing of Rust is compiled.
include(cmake/third_party.cmake)
set(ufbx_version 0.11.5) # of the package; the library in it is 0.23.1
set(ufbx_folder ${VANTORELIX_THIRD_PARTY}/ufbx-${ufbx_version})

function(vantorelix_fetch_ufbx work remedy result)
  vantorelix_fetch_crates(${work} ufbx ${remedy} ufbx=${ufbx_version})
  set(${result} ${work}/vendor/ufbx/ufbx PARENT_SCOPE)
endfunction()

vantorelix_third_party(ufbx ufbx-${ufbx_version} "ufbx/ufbx.c and ufbx/ufbx.h of the Rust package ufbx ${ufbx_version}"
                       ufbx.c 4a956c26a708e40d82ecb0aeaee54da709d5ba7c144c9642174970059bda7e1d
                       ufbx.h f787be529af577efc04f3e3e735844a08556718dbb613d1211c2b313d72895dc)

# As C++, which C compilers and toolchains without one need not be found for.
add_library(vantorelix_ufbx STATIC ${ufbx_folder}/ufbx.c)
set_source_files_properties(${ufbx_folder}/ufbx.c PROPERTIES LANGUAGE CXX)
target_include_directories(vantorelix_ufbx SYSTEM PUBLIC ${ufbx_folder})
target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_MINIMAL UFBX_ENABLE_SCENE_EVALUATION)
vantorelix_compile_third_party(vantorelix_ufbx)
if(VANTORELIX_SANITIZE)
  target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_UBSAN UFBX_NO_UNALIGNED_LOADS)
endif()
