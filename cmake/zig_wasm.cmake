# What cmake/zig.cmake sets for WebAssembly, with the system interface WASI. zig's own C++ library for it has neither
# exceptions nor files, so web/runtime.cmake builds one from zig's sources; what includes its headers has to agree with it.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
include(${CMAKE_CURRENT_LIST_DIR}/zig_tools.cmake)
set(CMAKE_C_COMPILER ${VANTORELIX_ZIG} cc)
set(CMAKE_C_COMPILER_TARGET ${VANTORELIX_ZIG_TARGET})
set(CMAKE_EXECUTABLE_SUFFIX_CXX .wasm)
# Every browser that has exceptions has simd128, which takes 6 to 10 % off a sample (tools/web.py times).
set(instructions "-mcpu=generic+exception_handling+simd128 -fwasm-exceptions")
set(CMAKE_C_FLAGS_INIT "${instructions}")
set(CMAKE_CXX_FLAGS_INIT "${instructions} -U_LIBCPP_HAS_FILESYSTEM -D_LIBCPP_HAS_FILESYSTEM=1")
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)  # whatever was asked for: it costs a table, and nothing here moves
# A library that is called into, not a program: _initialize runs the constructors.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s -mexec-model=reactor -nostdlib++")
