# Tests that run on a CPython.

# What an interpreter says of itself.
function(vantorelix_ask_python python question result)
  execute_process(COMMAND ${python} -c "import sys, sysconfig; print(${question})" OUTPUT_VARIABLE answer
                  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${python} does not run; name a CPython 3.7 or newer with PYTHON=/path/to/python")
  endif()
  set(${result} ${answer} PARENT_SCOPE)
endfunction()

# The environment in which an interpreter loads what this build makes. Under a sanitizer its runtime comes before the
# interpreter, which knows nothing of it and leaks by its own choice.
function(vantorelix_python_environment result)
  set(environment PYTHONDONTWRITEBYTECODE=1 VANTORELIX_PROGRAM=$<TARGET_FILE:vantorelix>)
  if(VANTORELIX_SANITIZE)
    foreach(library libasan.so libstdc++.so)
      execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library} OUTPUT_VARIABLE path
                      OUTPUT_STRIP_TRAILING_WHITESPACE)
      list(APPEND runtime ${path})
    endforeach()
    list(JOIN runtime ":" runtime)
    list(APPEND environment LD_PRELOAD=${runtime} ASAN_OPTIONS=detect_leaks=0 PYTHONMALLOC=malloc)
  endif()
  set(${result} ${environment} PARENT_SCOPE)
endfunction()
