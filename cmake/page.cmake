# vantorelix_page: the page that shows trails, inside the program. npm builds it from viewer/ when that changes, once for
# all build folders; see tools/page.py. A build that does not link this library needs neither npm nor Node.js.
set(VANTORELIX_PAGE "" CACHE FILEPATH "The page of viewer/, built elsewhere; empty: npm builds it")
set(VANTORELIX_PAGE_FOLDER ${PROJECT_SOURCE_DIR}/build/page CACHE PATH "Where the page is built")
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(page_code ${PROJECT_BINARY_DIR}/page.cpp)
set(page_tool ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/page.py --folder ${VANTORELIX_PAGE_FOLDER} --source
              ${page_code})
if(VANTORELIX_PAGE)
  list(APPEND page_tool --page ${VANTORELIX_PAGE})
  set(page_sources ${VANTORELIX_PAGE})
else()
  set(viewer ${PROJECT_SOURCE_DIR}/viewer)
  file(GLOB_RECURSE page_sources CONFIGURE_DEPENDS ${viewer}/src/*)
  file(GLOB page_files CONFIGURE_DEPENDS ${viewer}/*.json ${viewer}/*.html ${viewer}/*.ts)
  list(APPEND page_sources ${page_files} ${viewer}/.npmrc)
endif()
add_custom_command(OUTPUT ${page_code} COMMAND ${page_tool} VERBATIM COMMENT "Building the page"
                   DEPENDS ${page_sources} ${PROJECT_SOURCE_DIR}/tools/page.py)

vantorelix_licence(three)
add_library(vantorelix_page STATIC ${page_code})
target_link_libraries(vantorelix_page PUBLIC vantorelix_flags)
