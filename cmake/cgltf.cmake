# vantorelix_cgltf: the library that reads glTF, a single header. No distribution packages it everywhere; the source
# package of MaterialX, which reads glTF through it too, brings it.
#
# Why this one: it hands out the structure of a file and leaves opening buffers and the memory to us. tinygltf, which
# Debian has, decodes every image and buffer by itself, and runs out of stack on 200,000 brackets in a row.
include(cmake/third_party.cmake)
set(cgltf_source materialx-1.39.5)
set(cgltf_inside ${cgltf_source}/source/MaterialXRender/External/Cgltf)

function(vantorelix_fetch_cgltf work remedy result)
  find_package(Python3 QUIET COMPONENTS Interpreter)
  if(NOT Python3_FOUND)
    message(FATAL_ERROR "Reading glTF needs the library cgltf, which Python fetches, and that is not here. Install it "
                        "(Debian: apt-get install python3 python3-venv), ${remedy}.")
  endif()
  execute_process(COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/fetch_source.py
                          ${PROJECT_SOURCE_DIR}/tools/cgltf.txt materialx ${work}
                  RESULT_VARIABLE code OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "The source of the library cgltf could not be fetched: see to the network and to Python's venv "
                        "(Debian: apt-get install python3-venv) and configure again, ${remedy}. It said:\n${said}")
  endif()
  file(ARCHIVE_EXTRACT INPUT ${work}/${cgltf_source}.tar.gz DESTINATION ${work} PATTERNS ${cgltf_inside}/cgltf.h)
  set(${result} ${work}/${cgltf_inside} PARENT_SCOPE)
endfunction()

# Version 1.13.
vantorelix_third_party(cgltf cgltf-1.13 "the file ${cgltf_inside}/cgltf.h of that Python package's source"
                       cgltf.h 017aa061da0e6db11d416b82521d12d2818ea2819e1dca90e2eb86ce183324c4)

file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/cgltf.cpp CONTENT "#define CGLTF_IMPLEMENTATION\n#include <cgltf.h>\n")
add_library(vantorelix_cgltf STATIC ${PROJECT_BINARY_DIR}/cgltf.cpp)
target_include_directories(vantorelix_cgltf SYSTEM PUBLIC ${VANTORELIX_THIRD_PARTY}/cgltf-1.13)
vantorelix_compile_third_party(vantorelix_cgltf)
