# vantorelix_ufbx: the library that reads FBX, compiled from its source. The source comes as a Rust package, because
# that is how its author publishes it; nothing of Rust is compiled. It is fetched once for all build folders.
set(ufbx_version 0.11.5) # of the package; the library in it is 0.23.1
set(ufbx_files
    ufbx.c 4a956c26a708e40d82ecb0aeaee54da709d5ba7c144c9642174970059bda7e1d
    ufbx.h f787be529af577efc04f3e3e735844a08556718dbb613d1211c2b313d72895dc)
set(VANTORELIX_THIRD_PARTY ${PROJECT_SOURCE_DIR}/build/third_party CACHE PATH "Where fetched sources are kept")
set(ufbx_folder ${VANTORELIX_THIRD_PARTY}/ufbx-${ufbx_version})

# Sets `result` to what is wrong with the files in a folder; empty when they are the ones wanted.
function(vantorelix_check_ufbx result folder)
  set(${result} "" PARENT_SCOPE)
  set(names_and_hashes ${ufbx_files})
  while(names_and_hashes)
    list(POP_FRONT names_and_hashes name expected)
    if(NOT EXISTS ${folder}/${name})
      set(${result} "${name} is missing" PARENT_SCOPE)
      return()
    endif()
    file(SHA256 ${folder}/${name} found)
    if(NOT found STREQUAL expected)
      set(${result} "${name} is not the file it should be (SHA-256 ${found}, not ${expected})" PARENT_SCOPE)
      return()
    endif()
  endwhile()
endfunction()

function(vantorelix_fetch_ufbx)
  set(remedy "or unpack the Rust package ufbx ${ufbx_version} by hand and put its ufbx/ufbx.c and ufbx/ufbx.h into ${ufbx_folder}")
  find_program(VANTORELIX_CARGO cargo HINTS $ENV{HOME}/.cargo/bin)
  if(NOT VANTORELIX_CARGO)
    message(FATAL_ERROR "Reading FBX needs the library ufbx, whose source the program cargo fetches, which is not "
                        "here. Install it (Debian: apt-get install cargo), ${remedy}.")
  endif()
  message(STATUS "Fetching the source of ufbx into ${ufbx_folder}")
  set(work ${ufbx_folder}/fetch)
  file(REMOVE_RECURSE ${work})
  file(WRITE ${work}/empty.rs "")
  file(WRITE ${work}/Cargo.toml "[package]\nname = \"fetch\"\nversion = \"0.0.0\"\nedition = \"2018\"\n"
       "[lib]\npath = \"empty.rs\"\n[dependencies]\nufbx = \"=${ufbx_version}\"\n[workspace]\n")
  # Debian 12's cargo reads the small index, instead of cloning all of a large one, only when it is asked to.
  execute_process(COMMAND ${CMAKE_COMMAND} -E env RUSTC_BOOTSTRAP=1 CARGO_UNSTABLE_SPARSE_REGISTRY=true
                          ${VANTORELIX_CARGO} vendor --quiet
                  WORKING_DIRECTORY ${work} RESULT_VARIABLE code OUTPUT_QUIET ERROR_VARIABLE said)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "The source of the library ufbx could not be fetched: see to the network and configure again, "
                        "${remedy}. cargo said:\n${said}")
  endif()
  vantorelix_check_ufbx(wrong ${work}/vendor/ufbx/ufbx)
  if(wrong)
    message(FATAL_ERROR "The source of the library ufbx was fetched, but ${wrong}. Fetch it from another mirror, ${remedy}.")
  endif()
  file(COPY ${work}/vendor/ufbx/ufbx/ DESTINATION ${ufbx_folder})
  file(REMOVE_RECURSE ${work})
endfunction()

# Two builds that are configured at once must not both fetch it.
file(LOCK ${VANTORELIX_THIRD_PARTY}/ufbx.lock GUARD FILE TIMEOUT 600)
vantorelix_check_ufbx(ufbx_wrong ${ufbx_folder})
if(ufbx_wrong)
  vantorelix_fetch_ufbx()
endif()
file(LOCK ${VANTORELIX_THIRD_PARTY}/ufbx.lock RELEASE)

# As C++, which C compilers and toolchains without one need not be found for. None of our warnings, but our floating
# point and sanitizers: what is evaluated through it must not depend on the processor either.
add_library(vantorelix_ufbx STATIC ${ufbx_folder}/ufbx.c)
set_source_files_properties(${ufbx_folder}/ufbx.c PROPERTIES LANGUAGE CXX)
target_include_directories(vantorelix_ufbx SYSTEM PUBLIC ${ufbx_folder})
target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_MINIMAL UFBX_ENABLE_SCENE_EVALUATION)
if(NOT MSVC)
  target_compile_options(vantorelix_ufbx PRIVATE -w -ffp-contract=off)
  if(VANTORELIX_SANITIZE)
    target_compile_definitions(vantorelix_ufbx PRIVATE UFBX_UBSAN UFBX_NO_UNALIGNED_LOADS)
    target_compile_options(vantorelix_ufbx PRIVATE -fsanitize=${VANTORELIX_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
  endif()
  if(VANTORELIX_FUZZ)
    target_compile_options(vantorelix_ufbx PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endif()
