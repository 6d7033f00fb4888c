# Libraries that are compiled from sources which no distribution packages everywhere. `./dev fetch` has fetched them, once for
# all build folders; else they are fetched here. tools/sources.py knows where from, and checks them by their hashes.
set(VANTORELIX_THIRD_PARTY ${PROJECT_SOURCE_DIR}/build/third_party CACHE PATH "Where fetched sources are kept")
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# Sets `result` to the folder with the sources of a library.
function(vantorelix_third_party library result)
  execute_process(COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/sources.py ${library} --into ${VANTORELIX_THIRD_PARTY}
                  RESULT_VARIABLE failed OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(failed)
    message(FATAL_ERROR "The source of the library ${library} is missing; see above. ./dev fetch fetches it alone.")
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/${library}.sha256)
  set(${result} ${folder} PARENT_SCOPE)
endfunction()

# What a library of others is compiled with: none of our warnings, but our floating point and sanitizers. It reads what
# anybody wrote, and what is evaluated through it must not depend on the processor.
function(vantorelix_compile_third_party target)
  if(MSVC)
    return()
  endif()
  target_compile_options(${target} PRIVATE -w -ffp-contract=off)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL wasm32)
    target_compile_options(${target} PRIVATE -Os)  # 13 KB less of what a page loads, gzipped (tools/web.py make)
  endif()
  if(VANTORELIX_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VANTORELIX_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
  endif()
  if(VANTORELIX_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()
