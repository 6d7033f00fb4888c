# Libraries that are compiled from sources which no distribution packages everywhere. The sources are fetched once for
# all build folders, and checked by their hashes.
set(VANTORELIX_THIRD_PARTY ${PROJECT_SOURCE_DIR}/build/third_party CACHE PATH "Where fetched sources are kept")

# Sets `result` to what is wrong with files in a folder, given as NAME SHA256 ...; empty when they are the ones wanted.
function(vantorelix_check_files result folder)
  set(${result} "" PARENT_SCOPE)
  while(ARGN)
    list(POP_FRONT ARGN name expected)
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

# Sees to it that `folder` below VANTORELIX_THIRD_PARTY holds files of these hashes, given as NAME SHA256 .... Where it
# does not, calls vantorelix_fetch_<library>(WORK REMEDY RESULT), which fetches into the folder WORK, sets the variable
# RESULT to the folder that has the files, and fails with REMEDY in its text. `by_hand` completes the remedy: what to
# put into the folder.
function(vantorelix_third_party library folder by_hand)
  set(destination ${VANTORELIX_THIRD_PARTY}/${folder})
  # Two builds that are configured at once must not both fetch it.
  file(LOCK ${VANTORELIX_THIRD_PARTY}/${library}.lock GUARD FUNCTION TIMEOUT 600)
  vantorelix_check_files(wrong ${destination} ${ARGN})
  if(NOT wrong)
    return()
  endif()
  message(STATUS "Fetching the source of ${library} into ${destination}")
  set(work ${destination}/fetch)
  file(REMOVE_RECURSE ${work})
  file(MAKE_DIRECTORY ${work})
  set(remedy "or put ${by_hand} into ${destination} by hand")
  cmake_language(CALL vantorelix_fetch_${library} ${work} ${remedy} fetched)
  vantorelix_check_files(wrong ${fetched} ${ARGN})
  if(wrong)
    message(FATAL_ERROR "The source of the library ${library} was fetched, but ${wrong}. Fetch it from another mirror, "
                        "${remedy}.")
  endif()
  file(COPY ${fetched}/ DESTINATION ${destination})
  file(REMOVE_RECURSE ${work})
endfunction()

# Fetches Rust packages, given as NAME=VERSION ..., into the folder `work`/vendor: for the source of a C library that its
# author, or a binding of his, publishes that way. What they depend on comes along, so its versions are given, too.
function(vantorelix_fetch_crates work library remedy)
  find_program(VANTORELIX_CARGO cargo HINTS $ENV{HOME}/.cargo/bin)
  if(NOT VANTORELIX_CARGO)
    message(FATAL_ERROR "The source of the library ${library} is fetched by the program cargo, which is not here. "
                        "Install it (Debian: apt-get install cargo), ${remedy}.")
  endif()
  list(TRANSFORM ARGN REPLACE "(.+)=(.+)" "\\1 = \"=\\2\"\n")
  string(CONCAT dependencies ${ARGN})
  file(WRITE ${work}/empty.rs "")
  file(WRITE ${work}/Cargo.toml "[package]\nname = \"fetch\"\nversion = \"0.0.0\"\nedition = \"2018\"\n"
       "[lib]\npath = \"empty.rs\"\n[dependencies]\n${dependencies}[workspace]\n")
  # Debian 12's cargo reads the small index, instead of cloning all of a large one, only when it is asked to.
  execute_process(COMMAND ${CMAKE_COMMAND} -E env RUSTC_BOOTSTRAP=1 CARGO_UNSTABLE_SPARSE_REGISTRY=true
                          ${VANTORELIX_CARGO} vendor --quiet
                  WORKING_DIRECTORY ${work} RESULT_VARIABLE code OUTPUT_QUIET ERROR_VARIABLE said)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "The source of the library ${library} could not be fetched: see to the network and configure "
                        "again, ${remedy}. cargo said:\n${said}")
  endif()
endfunction()

# What a library of others is compiled with: none of our warnings, but our floating point and sanitizers. It reads what
# anybody wrote, and what is evaluated through it must not depend on the processor.
function(vantorelix_compile_third_party target)
  if(MSVC)
    return()
  endif()
  target_compile_options(${target} PRIVATE -w -ffp-contract=off)
  if(VANTORELIX_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VANTORELIX_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
  endif()
  if(VANTORELIX_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()
