# How every target of this project is made. One function a kind.

# Warnings, floating point and sanitizers, alike for all.
add_library(vantorelix_flags INTERFACE)
target_include_directories(vantorelix_flags INTERFACE ${PROJECT_SOURCE_DIR})
if(MSVC)
  target_compile_options(vantorelix_flags INTERFACE /W4 /fp:precise $<$<BOOL:${VANTORELIX_WERROR}>:/WX>)
else()
  # No fused multiply-add: results must not depend on the processor. Nobody reads errno after a square root, and
  # without it loops over square roots vectorise; the numbers stay the same.
  target_compile_options(vantorelix_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                         -ffp-contract=off -fno-math-errno $<$<BOOL:${VANTORELIX_WERROR}>:-Werror>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees overlapping copies in every text + std::string (its bug 105651).
    target_compile_options(vantorelix_flags INTERFACE -Wno-restrict)
  endif()
  if(VANTORELIX_SANITIZE)
    target_compile_options(vantorelix_flags INTERFACE -fsanitize=${VANTORELIX_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
    target_link_options(vantorelix_flags INTERFACE -fsanitize=${VANTORELIX_SANITIZE})
  endif()
endif()

# The sources below a folder that are neither tests nor a shared library of their own. NAME_windows.cpp and NAME_posix.cpp
# are one or the other.
if(WIN32)
  set(vantorelix_elsewhere posix)
else()
  set(vantorelix_elsewhere windows)
endif()
function(vantorelix_sources result folder)
  file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  list(FILTER found EXCLUDE REGEX "_test\\.cpp$|/main\\.cpp$|_${vantorelix_elsewhere}\\.cpp$")
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# A static library of everything below a folder of the same name.
function(vantorelix_library folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS;PACKAGES" ${ARGN})
  vantorelix_sources(sources ${folder})
  add_library(vantorelix_${folder} STATIC ${sources})
  target_link_libraries(vantorelix_${folder} PUBLIC vantorelix_flags ${ARG_PACKAGES})
  foreach(dependency IN LISTS ARG_DEPENDS)
    target_link_libraries(vantorelix_${folder} PUBLIC vantorelix_${dependency})
  endforeach()
endfunction()

# One GoogleTest program from the *_test.cpp files of a folder and those below it.
function(vantorelix_test folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*_test.cpp)
  if(NOT sources)
    return()
  endif()
  string(REPLACE "/" "_" name ${folder})
  add_executable(${name}_test ${sources})
  target_link_libraries(${name}_test PRIVATE ${ARG_DEPENDS} vantorelix_flags GTest::gtest GTest::gmock GTest::gtest_main)
  # Tests of one folder may name things alike.
  set_target_properties(${name}_test PROPERTIES UNITY_BUILD OFF)
  # What tests do themselves need not be fast, and takes twice as long to compile when it is.
  if(NOT MSVC)
    # Without optimising zig checks for undefined behaviour, with a library that it lacks for some systems.
    target_compile_options(${name}_test PRIVATE -O0 -g1 $<$<BOOL:${CMAKE_CROSSCOMPILING}>:-fno-sanitize=undefined>)
  endif()
  # Half the time that a test takes to compile goes to the test library's headers: compiled once, for all programs.
  get_property(first GLOBAL PROPERTY vantorelix_first_test)
  if(first)
    target_precompile_headers(${name}_test REUSE_FROM ${first})
  else()
    target_precompile_headers(${name}_test PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
    set_property(GLOBAL PROPERTY vantorelix_first_test ${name}_test)
  endif()
  target_compile_definitions(${name}_test PRIVATE VANTORELIX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  add_test(NAME ${name} COMMAND ${name}_test --gtest_output=xml:${PROJECT_BINARY_DIR}/reports/${name}.xml
           WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endfunction()
