# vantorelix_cxx_runtime: the C++ library, from zig's sources, with exceptions and files. See cmake/zig_wasm.cmake.
enable_language(C)  # of the unwinder
get_filename_component(zig_library ${VANTORELIX_ZIG} DIRECTORY)
set(zig_library ${zig_library}/lib)

# Threads there are none, and so nothing that waits for them.
set(libcxx algorithm call_once charconv chrono error_category exception filesystem/directory_entry
    filesystem/directory_iterator filesystem/filesystem_clock filesystem/filesystem_error filesystem/int128_builtins
    filesystem/operations filesystem/path fstream functional hash ios ios.instantiations iostream locale memory new_handler
    new_helpers optional ostream random ryu/d2fixed ryu/d2s ryu/f2s stdexcept string system_error
    typeinfo variant vector verbose_abort)
set(libcxxabi abort_message cxa_aux_runtime cxa_default_handlers cxa_exception cxa_exception_storage cxa_guard cxa_handlers
    cxa_personality cxa_vector cxa_virtual private_typeinfo stdlib_exception stdlib_new_delete stdlib_stdexcept
    stdlib_typeinfo fallback_malloc)
list(TRANSFORM libcxx REPLACE "(.+)" "${zig_library}/libcxx/src/\\1.cpp")
list(TRANSFORM libcxxabi REPLACE "(.+)" "${zig_library}/libcxxabi/src/\\1.cpp")

add_library(vantorelix_cxx_runtime STATIC ${libcxx} ${libcxxabi} ${zig_library}/libunwind/src/Unwind-wasm.c
            ${CMAKE_CURRENT_SOURCE_DIR}/runtime_gaps.c)
target_include_directories(vantorelix_cxx_runtime PRIVATE ${zig_library}/libcxx/src ${zig_library}/libcxx/libc
                           ${zig_library}/libcxxabi/include ${zig_library}/libunwind/include)
target_compile_definitions(vantorelix_cxx_runtime PRIVATE LIBCXX_BUILDING_LIBCXXABI LIBCXXABI_NON_DEMANGLING_TERMINATE
                           _LIBCPP_BUILDING_LIBRARY _LIBCXXABI_BUILDING_LIBRARY _LIBCXXABI_HAS_NO_THREADS
                           _LIBUNWIND_HIDE_SYMBOLS)
target_compile_options(vantorelix_cxx_runtime PRIVATE -w)
set_source_files_properties(${zig_library}/libcxx/src/filesystem/operations.cpp PROPERTIES
                            COMPILE_OPTIONS "-include;${CMAKE_CURRENT_SOURCE_DIR}/copy_file_range.h")
target_compile_features(vantorelix_cxx_runtime PRIVATE cxx_std_23 c_std_23)
set_target_properties(vantorelix_cxx_runtime PROPERTIES UNITY_BUILD OFF CXX_EXTENSIONS ON)
