# Tests that run on a CPython, and the Python files beside what is compiled for one.

# What an interpreter says of itself.
function(vantorelix_ask_python python question result)
  execute_process(COMMAND ${python} -c "import sys, sysconfig; print(${question})" OUTPUT_VARIABLE answer
                  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${python} does not run; name a CPython 3.7 or newer with PYTHON=/path/to/python")
  endif()
  set(${result} ${answer} PARENT_SCOPE)
endfunction()

# vantorelix_describe_python(PYTHON): sets `version`, `include`, `suffix`, `library`, what a module links with (nothing but
# on Windows), and `interpreter`, what runs it. An interpreter for another system does not run by itself: there PYTHON is
# its folder.
function(vantorelix_describe_python python)
  set(library "")
  set(interpreter ${python})
  if(CMAKE_CROSSCOMPILING AND WIN32)
    set(include ${python}/include)
    file(STRINGS ${include}/patchlevel.h numbers REGEX "define PY_M(AJOR|INOR)_VERSION")
    string(REGEX REPLACE ".*MAJOR_VERSION[ \t]+([0-9]+).*MINOR_VERSION[ \t]+([0-9]+).*" "\\1;\\2" numbers "${numbers}")
    list(JOIN numbers "" digits)
    list(JOIN numbers "." version)
    set(suffix .cp${digits}-win_amd64.pyd)
    set(library ${python}/libs/python${digits}.lib)
    set(interpreter ${CMAKE_CROSSCOMPILING_EMULATOR} ${python}/python.exe)
  else()
    vantorelix_ask_python(${python} "'%d.%d' % sys.version_info[:2]" version)
    vantorelix_ask_python(${python} "sysconfig.get_path('include')" include)
    vantorelix_ask_python(${python} "sysconfig.get_config_var('EXT_SUFFIX')" suffix)
    if(CMAKE_CROSSCOMPILING AND APPLE)
      # The headers of a Linux on the same kind of processor serve: all sizes are the same.
      string(REGEX REPLACE "-[^-]*-linux-gnu" "-darwin" suffix ${suffix})
    endif()
  endif()
  foreach(name version include suffix library interpreter)
    set(${name} "${${name}}" PARENT_SCOPE)
  endforeach()
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

# vantorelix_stage_scripts(TARGET FOLDER SCRIPT...): a target that copies scripts of the current folder, named by their
# paths in it, to the same paths in another.
function(vantorelix_stage_scripts target folder)
  set(staged "")
  foreach(script IN LISTS ARGN)
    add_custom_command(OUTPUT ${folder}/${script} DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${script}
                       COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_SOURCE_DIR}/${script} ${folder}/${script})
    list(APPEND staged ${folder}/${script})
  endforeach()
  add_custom_target(${target} ALL DEPENDS ${staged})
endfunction()
