# A toolchain for what is given away: zig's C++ compiler with its own C++ library linked in. VANTORELIX_ZIG is the program,
# VANTORELIX_ZIG_TARGET the system (tools/zig.py): Linux, with no symbol of glibc newer than 2.17, Windows, macOS or WebAssembly.
set(VANTORELIX_ZIG_TARGET x86_64-linux-gnu.2.17 CACHE STRING "The processor, system and C library, as zig names them")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VANTORELIX_ZIG VANTORELIX_ZIG_TARGET)
set(CMAKE_CXX_COMPILER ${VANTORELIX_ZIG} c++)
set(CMAKE_CXX_COMPILER_TARGET ${VANTORELIX_ZIG_TARGET})
# Compiling is question enough: linking builds zig's C++ library, once more for every set of processor flags asked for.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# No debug symbols.
set(CMAKE_EXE_LINKER_FLAGS_INIT -s)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -s)
get_filename_component(zig_folder ${VANTORELIX_ZIG} DIRECTORY)
if(VANTORELIX_ZIG_TARGET MATCHES "windows")
  include(${CMAKE_CURRENT_LIST_DIR}/zig_windows.cmake)
  set(c_library mingw-w64=${zig_folder}/lib/libc/mingw/COPYING)
elseif(VANTORELIX_ZIG_TARGET MATCHES "macos")
  include(${CMAKE_CURRENT_LIST_DIR}/zig_macos.cmake)
  set(c_library "")  # the system's own
elseif(VANTORELIX_ZIG_TARGET MATCHES "wasm")
  include(${CMAKE_CURRENT_LIST_DIR}/zig_wasm.cmake)
  set(c_library wasi-libc=${zig_folder}/lib/libc/wasi/LICENSE)
else()
  set(c_library glibc=${zig_folder}/lib/libc/glibc/io/stat-2.32.c)
  # Nothing of the C++ library inside is seen from outside, where the process may have another one.
  set(CMAKE_MODULE_LINKER_FLAGS_INIT "-s -Wl,--version-script=${CMAKE_CURRENT_LIST_DIR}/module_exports.map")
endif()

# What is linked in besides our own libraries.
set(VANTORELIX_LINKED_LICENCES
    libc++=${zig_folder}/lib/libcxx/LICENSE.TXT libc++abi=${zig_folder}/lib/libcxxabi/LICENSE.TXT
    libunwind=${zig_folder}/lib/libunwind/LICENSE.TXT zig=${zig_folder}/LICENSE ${c_library})

# The header of CPython 3.7 includes one of glibc's that zig does not have, and uses nothing of it.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/absent/crypt.h CONTENT "")
string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${CMAKE_BINARY_DIR}/absent")

# Debian's header of CPython includes <x86_64-linux-gnu/python3.11/pyconfig.h>, from a folder that holds glibc's headers, too.
file(GLOB architectures RELATIVE /usr/include /usr/include/*-linux-gnu)
foreach(architecture ${architectures})
  file(CREATE_LINK /usr/include/${architecture} ${CMAKE_BINARY_DIR}/absent/${architecture} SYMBOLIC)
endforeach()

# Packages that are headers alone are taken from Debian's, and without glibc's headers beside them.
set(headers ${CMAKE_BINARY_DIR}/headers)
foreach(package CLI11:CLI nlohmann_json:nlohmann)
  string(REPLACE ":" ";" package ${package})
  list(GET package 0 name)
  list(GET package 1 folder)
  file(MAKE_DIRECTORY ${headers}/include)
  file(COPY /usr/share/cmake/${name} DESTINATION ${headers}/share/cmake)
  file(CREATE_LINK /usr/include/${folder} ${headers}/include/${folder} SYMBOLIC)
  set(${name}_DIR ${headers}/share/cmake/${name})
endforeach()
