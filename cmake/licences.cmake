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

# Sets `result` to a C++ source with the notices (cli/output/licences.h). After the last vantorelix_licence.
function(vantorelix_licences_source result)
  get_property(named GLOBAL PROPERTY vantorelix_licences)
  set(entries "")
  set(printed "The program holds parts of these libraries, under the terms that follow.\n")
  foreach(each IN LISTS named VANTORELIX_LINKED_LICENCES)
    string(REGEX MATCH "^([^=]*)=(.*)$" matched "${each}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_MATCH_2}")
    set(name "${CMAKE_MATCH_1}")
    file(READ "${CMAKE_MATCH_2}" text)
    if(text MATCHES "^/\\*")  # a source, whose first comment it is
      string(FIND "${text}" "*/" end)
      string(SUBSTRING "${text}" 0 ${end} text)
      string(REGEX REPLACE "^/\\* *" "" text "${text}")
    endif()
    string(LENGTH "${name}" length)
    string(REPEAT "=" ${length} line)
    string(APPEND printed "\n${name}\n${line}\n\n${text}")
    string(APPEND entries "      {\"${name}\", R\"notice(${text})notice\"},\n")
  endforeach()
  # As the program prints them, for archives of one that does not run here.
  file(WRITE ${PROJECT_BINARY_DIR}/licences.txt "${printed}")
  set(source ${PROJECT_BINARY_DIR}/licences.cpp)
  file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[// Made by cmake/licences.cmake.
#include "cli/output/licences.h"

namespace vantorelix::cli {

const std::vector<Licence>& licences() {
  static const std::vector<Licence> all = {
@entries@  };
  return all;
}

}  // namespace vantorelix::cli
]])
  set(${result} ${source} PARENT_SCOPE)
endfunction()
