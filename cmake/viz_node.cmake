# The viz node's attributes in C++, made from the tables of the node plug-in.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(viz_node_code ${PROJECT_BINARY_DIR}/viz_node_attributes.cpp)
set(viz_node_plugin ${PROJECT_SOURCE_DIR}/maya/companion/Vantorelix_plugin.py)
set(viz_node_tool ${PROJECT_SOURCE_DIR}/tools/viz_node.py)
add_custom_command(OUTPUT ${viz_node_code} VERBATIM DEPENDS ${viz_node_plugin} ${viz_node_tool}
                   COMMAND ${Python3_EXECUTABLE} ${viz_node_tool} --plugin ${viz_node_plugin} --source ${viz_node_code}
                   COMMAND ${CMAKE_COMMAND} -E touch ${viz_node_code})
target_sources(vantorelix_standalone PRIVATE ${viz_node_code})
