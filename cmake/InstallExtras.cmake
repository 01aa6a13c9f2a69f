# SPDX-License-Identifier: MIT
# The tool with its completion, the man pages and the documents. Parts that are not built are left
# out, pages included. The virtual camera's own folder installs the virtual camera.
file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(man_pages docs/man/imageacquisition.7)

if(TARGET iacq)
  # A tree outside the system's library path works without being told where its library is.
  set_target_properties(iacq PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS iacq RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  install(FILES tools/completion/iacq.bash RENAME iacq COMPONENT tools
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  list(APPEND man_pages docs/man/iacq.1)
endif()
if(TARGET with-virtual-camera)
  list(APPEND man_pages docs/man/with-virtual-camera.1)
  install(FILES virtualcamera/README.md RENAME virtual-camera.md COMPONENT documentation OPTIONAL
    DESTINATION "${CMAKE_INSTALL_DOCDIR}")
endif()

foreach(page IN LISTS man_pages)
  get_filename_component(section "${page}" LAST_EXT)
  string(REPLACE "." "man" section "${section}")
  install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/${section}" COMPONENT documentation)
endforeach()
file(GLOB guides CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
install(FILES README.md INSTALL.md CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  COMPONENT documentation)
install(FILES ${guides} docs/frame.png DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs"
  COMPONENT documentation)
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
# The reference, when it was built.
install(DIRECTORY "${PROJECT_BINARY_DIR}/docs/html" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  COMPONENT documentation OPTIONAL)

# udev looks here below the prefixes /usr and /usr/local; another prefix wants /etc/udev/rules.d.
set(IMAGEACQUISITION_UDEV_RULES_DIR "lib/udev/rules.d" CACHE STRING
    "Where the udev rules go: relative to the prefix, or absolute")
configure_file(udev/70-imageacquisition.rules.in
               "${PROJECT_BINARY_DIR}/udev/70-imageacquisition.rules" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/udev/70-imageacquisition.rules"
  DESTINATION "${IMAGEACQUISITION_UDEV_RULES_DIR}" COMPONENT runtime)
