# The notices of the libraries that a program holds, as `vantorelix --licences` prints them. Whoever links a library in says
# so with vantorelix_licence; a toolchain that links more in names it in VANTORELIX_LINKED_LICENCES ("NAME=FILE" each).

# vantorelix_licence(NAME [FILE]), default: cmake/licences/NAME.txt
function(vantorelix_licence name)
  set(file ${ARGN})
  if(NOT file)
    set(file ${PROJECT_SOURCE_DIR}/cmake/licences/${name}.txt)
  endif()
  set_property(GLOBAL APPEND PROPERTY vantorelix_licences "${name}=${file}")
endfunction()

# Sets `result` to a C++ source with the notices (cli/output/licences.h), and writes them to licences.txt in the build folder,
# for installations of a program that does not run here. After the last vantorelix_licence.
function(vantorelix_licences_source result)
  get_property(named GLOBAL PROPERTY vantorelix_licences)
  set(all "The program holds parts of these libraries, under the terms that follow.\n")
  set(pieces "")
  foreach(each IN LISTS named VANTORELIX_LINKED_LICENCES)
    string(REGEX MATCH "^([^=]*)=(.*)$" matched "${each}")
    set(name "${CMAKE_MATCH_1}")
    set(file "${CMAKE_MATCH_2}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" text)
    if(text MATCHES "^/\\*")  # a source, whose first comment it is
      string(FIND "${text}" "*/" end)
      string(SUBSTRING "${text}" 0 ${end} text)
      string(REGEX REPLACE "^/\\* *" "" text "${text}")
    endif()
    string(STRIP "${text}" text)
    string(REGEX REPLACE "." "=" line "${name}")
    set(text "\n${name}\n${line}\n\n${text}\n")
    string(APPEND all "${text}")
    string(APPEND pieces "\n      R\"notice(${text})notice\",")
  endforeach()
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/licences.txt @ONLY CONTENT "@all@")
  set(source ${PROJECT_BINARY_DIR}/licences.cpp)
  file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[// Made by cmake/licences.cmake.
#include "cli/output/licences.h"

namespace vantorelix::cli {

const std::vector<std::string_view>& licences() {
  static const std::vector<std::string_view> pieces = {
      "The program holds parts of these libraries, under the terms that follow.\n",@pieces@
  };
  return pieces;
}

}  // namespace vantorelix::cli
]])
  set(${result} ${source} PARENT_SCOPE)
endfunction()
