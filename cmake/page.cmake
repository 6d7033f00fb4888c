# vantorelix_page: the page that shows trails, inside the program. npm builds it from viewer/ when that changes, once for
# all build folders; see tools/page.py. A build that does not link this library needs neither npm nor Node.js.
set(VANTORELIX_PAGE "" CACHE FILEPATH "The page of viewer/, built elsewhere; empty: npm builds it")
set(VANTORELIX_PAGE_FOLDER ${PROJECT_SOURCE_DIR}/build/page CACHE PATH "Where the page is built")
option(VANTORELIX_LIVE "Put the engine as WebAssembly into the program, for live pages (needs its compiler: tools/zig.py)" OFF)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(page_tool ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/page.py --folder ${VANTORELIX_PAGE_FOLDER})
if(VANTORELIX_PAGE)
  list(APPEND page_tool --page ${VANTORELIX_PAGE})
  set(page_sources ${VANTORELIX_PAGE})
else()
  set(viewer ${PROJECT_SOURCE_DIR}/viewer)
  file(GLOB_RECURSE page_sources CONFIGURE_DEPENDS ${viewer}/src/* ${PROJECT_SOURCE_DIR}/web/src/*)
  file(GLOB page_files CONFIGURE_DEPENDS ${viewer}/*.json ${viewer}/*.html ${viewer}/*.ts)
  list(APPEND page_sources ${page_files} ${viewer}/.npmrc)
endif()
set(page_code ${PROJECT_BINARY_DIR}/page.cpp)
add_custom_command(OUTPUT ${page_code} COMMAND ${page_tool} --source ${page_code} VERBATIM COMMENT "Building the page"
                   DEPENDS ${page_sources} ${PROJECT_SOURCE_DIR}/tools/page.py)

# The engine in the page, compiled by zig once for all build folders.
set(engine_code ${PROJECT_BINARY_DIR}/page_engine.cpp)
set(engine_tool ${page_tool} --engine-source ${engine_code})
set(engine_stamp "")
if(VANTORELIX_LIVE)
  set(engine_stamp ${PROJECT_BINARY_DIR}/web_engine)
  set(engine_sources "")
  foreach(folder base host engine standalone session api web)
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp ${PROJECT_SOURCE_DIR}/${folder}/*.h
         ${PROJECT_SOURCE_DIR}/${folder}/*.txt)
    list(FILTER found EXCLUDE REGEX "_test")
    list(APPEND engine_sources ${found})
  endforeach()
  add_custom_command(OUTPUT ${engine_stamp} VERBATIM COMMENT "Compiling the engine as WebAssembly"
                     COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/web.py make
                     COMMAND ${CMAKE_COMMAND} -E touch ${engine_stamp}
                     DEPENDS ${engine_sources})
  list(APPEND engine_tool --wasm ${PROJECT_SOURCE_DIR}/build/package/web/bin/vantorelix.wasm)
endif()
add_custom_command(OUTPUT ${engine_code} COMMAND ${engine_tool} VERBATIM COMMENT "Putting the engine into the page"
                   DEPENDS ${engine_stamp} ${page_code} ${PROJECT_SOURCE_DIR}/tools/page.py)

vantorelix_licence(three)
add_library(vantorelix_page STATIC ${page_code} ${engine_code})
target_link_libraries(vantorelix_page PUBLIC vantorelix_flags)
