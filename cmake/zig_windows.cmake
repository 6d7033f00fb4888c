# What cmake/zig.cmake sets for Windows. The programs beside the compiler are zig's, too: of one word each, as CMake wants.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
foreach(tool ar ranlib rc)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/zig-${tool} CONTENT "#!/bin/sh\nexec '${VANTORELIX_ZIG}' ${tool} \"$@\"\n")
  file(CHMOD ${CMAKE_BINARY_DIR}/zig-${tool} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endforeach()
set(CMAKE_AR ${CMAKE_BINARY_DIR}/zig-ar)
set(CMAKE_RANLIB ${CMAKE_BINARY_DIR}/zig-ranlib)
set(CMAKE_RC_COMPILER ${CMAKE_BINARY_DIR}/zig-rc)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -s)
# As CMake does for this kind of compiler, but without a path that begins as an option does.
set(CMAKE_RC_COMPILE_OBJECT "<CMAKE_RC_COMPILER> <DEFINES> <INCLUDES> <FLAGS> /fo <OBJECT> -- <SOURCE>")
