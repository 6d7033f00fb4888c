# What `cmake --install` puts in place, and so what the archives of ./dev release hold.
include(GNUInstallDirs)

install(TARGETS vantorelix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
set(installed_pages cli.md formats.md install.md live.md measures.md python.md shots.md viewer.md)
list(TRANSFORM installed_pages PREPEND docs/)
install(FILES ${installed_pages} CHANGES.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/images DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN viewer*.png PATTERN live.png
        PATTERN shots.png)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING
        PATTERN *.ma PATTERN *.bvh PATTERN *.fbx PATTERN *.gltf PATTERN *.json PATTERN *.md)
install(FILES ${PROJECT_BINARY_DIR}/licences.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})

# What the program prints about itself: made where it can be run.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
set(printed ${PROJECT_BINARY_DIR}/printed)
file(MAKE_DIRECTORY ${printed})
# vantorelix_print(FILE FOLDER ARGUMENT...)
function(vantorelix_print file folder)
  add_custom_command(OUTPUT ${printed}/${file} VERBATIM DEPENDS vantorelix
                     COMMAND vantorelix ${ARGN} > ${printed}/${file}.part
                     COMMAND ${CMAKE_COMMAND} -E rename ${printed}/${file}.part ${printed}/${file})
  set_property(DIRECTORY APPEND PROPERTY vantorelix_printed ${printed}/${file})
  install(FILES ${printed}/${file} DESTINATION ${folder})
endfunction()
vantorelix_print(vantorelix.1 ${CMAKE_INSTALL_MANDIR}/man1 manual)
vantorelix_print(vantorelix ${CMAKE_INSTALL_DATADIR}/bash-completion/completions completion bash)
vantorelix_print(_vantorelix ${CMAKE_INSTALL_DATADIR}/zsh/site-functions completion zsh)
vantorelix_print(vantorelix.fish ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d completion fish)
get_property(all_printed DIRECTORY PROPERTY vantorelix_printed)
add_custom_target(vantorelix_printed ALL DEPENDS ${all_printed})
