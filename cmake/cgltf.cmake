# vantorelix_cgltf: the library that reads glTF, a single header. No distribution packages it everywhere; the source
# package of MaterialX, which reads glTF through it too, brings it. It is fetched once for all build folders.
#
# Why this one: it hands out the structure of a file and leaves opening buffers and the memory to us. tinygltf, which
# Debian has, decodes every image and buffer by itself, and runs out of stack on 200,000 brackets in a row.
set(cgltf_hash 017aa061da0e6db11d416b82521d12d2818ea2819e1dca90e2eb86ce183324c4) # of the header, version 1.13
set(cgltf_source materialx-1.39.5)
set(VANTORELIX_THIRD_PARTY ${PROJECT_SOURCE_DIR}/build/third_party CACHE PATH "Where fetched sources are kept")
set(cgltf_folder ${VANTORELIX_THIRD_PARTY}/cgltf-1.13)

# Sets `result` to what is wrong with the header in the folder; empty when it is the one wanted.
function(vantorelix_check_cgltf result)
  set(${result} "" PARENT_SCOPE)
  if(NOT EXISTS ${cgltf_folder}/cgltf.h)
    set(${result} "cgltf.h is missing" PARENT_SCOPE)
    return()
  endif()
  file(SHA256 ${cgltf_folder}/cgltf.h found)
  if(NOT found STREQUAL cgltf_hash)
    set(${result} "cgltf.h is not the file it should be (SHA-256 ${found}, not ${cgltf_hash})" PARENT_SCOPE)
  endif()
endfunction()

function(vantorelix_fetch_cgltf)
  set(inside ${cgltf_source}/source/MaterialXRender/External/Cgltf/cgltf.h)
  set(remedy "or put the file ${inside} of that Python package's source into ${cgltf_folder} by hand")
  find_package(Python3 QUIET COMPONENTS Interpreter)
  if(NOT Python3_FOUND)
    message(FATAL_ERROR "Reading glTF needs the library cgltf, which Python fetches, and that is not here. Install it "
                        "(Debian: apt-get install python3 python3-venv), ${remedy}.")
  endif()
  message(STATUS "Fetching the source of cgltf into ${cgltf_folder}")
  set(work ${cgltf_folder}/fetch)
  file(REMOVE_RECURSE ${work})
  file(MAKE_DIRECTORY ${work})
  execute_process(COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/fetch_source.py
                          ${PROJECT_SOURCE_DIR}/tools/cgltf.txt materialx ${work}
                  RESULT_VARIABLE code OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "The source of the library cgltf could not be fetched: see to the network and to Python's venv "
                        "(Debian: apt-get install python3-venv) and configure again, ${remedy}. It said:\n${said}")
  endif()
  file(ARCHIVE_EXTRACT INPUT ${work}/${cgltf_source}.tar.gz DESTINATION ${work} PATTERNS ${inside})
  file(COPY ${work}/${inside} DESTINATION ${cgltf_folder})
  file(REMOVE_RECURSE ${work})
  vantorelix_check_cgltf(wrong)
  if(wrong)
    message(FATAL_ERROR "The source of the library cgltf was fetched, but ${wrong}.")
  endif()
endfunction()

# Two builds that are configured at once must not both fetch it.
file(LOCK ${VANTORELIX_THIRD_PARTY}/cgltf.lock GUARD FILE TIMEOUT 600)
vantorelix_check_cgltf(cgltf_wrong)
if(cgltf_wrong)
  vantorelix_fetch_cgltf()
endif()
file(LOCK ${VANTORELIX_THIRD_PARTY}/cgltf.lock RELEASE)

# None of our warnings, but our sanitizers: it reads what anybody wrote.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/cgltf.cpp CONTENT "#define CGLTF_IMPLEMENTATION\n#include <cgltf.h>\n")
add_library(vantorelix_cgltf STATIC ${PROJECT_BINARY_DIR}/cgltf.cpp)
target_include_directories(vantorelix_cgltf SYSTEM PUBLIC ${cgltf_folder})
if(NOT MSVC)
  target_compile_options(vantorelix_cgltf PRIVATE -w)
  if(VANTORELIX_SANITIZE)
    target_compile_options(vantorelix_cgltf PRIVATE -fsanitize=${VANTORELIX_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
  endif()
  if(VANTORELIX_FUZZ)
    target_compile_options(vantorelix_cgltf PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endif()
