# What cmake/zig.cmake sets for Windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
include(${CMAKE_CURRENT_LIST_DIR}/zig_tools.cmake)
vantorelix_zig_tool(CMAKE_RC_COMPILER rc)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -s)
# As CMake does for this kind of compiler, but without a path that begins as an option does.
set(CMAKE_RC_COMPILE_OBJECT "<CMAKE_RC_COMPILER> <DEFINES> <INCLUDES> <FLAGS> /fo <OBJECT> -- <SOURCE>")
