# What cmake/zig.cmake sets for macOS, whose libraries zig knows by name.
set(CMAKE_SYSTEM_NAME Darwin)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR ${VANTORELIX_ZIG_TARGET})
include(${CMAKE_CURRENT_LIST_DIR}/zig_tools.cmake)
# CMake asks for one, and nothing here needs it: no library of ours is moved after it is linked.
set(CMAKE_INSTALL_NAME_TOOL /bin/false)
set(CMAKE_SKIP_RPATH ON)
# A module finds Python's functions in the process that loads it, which may have another C++ library: nothing of the one
# inside is seen from outside. A library, as zig 0.17 crashes when it links a bundle; Python loads either.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-dynamiclib -install_name _vantorelix -s -Wl,-undefined,dynamic_lookup")
