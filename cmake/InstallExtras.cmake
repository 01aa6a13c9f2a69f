# SPDX-License-Identifier: MIT
# The tool with its completion, the man pages and the documents. Parts that are not built are left
# out, pages included. The virtual camera's own folder installs the virtual camera.
if(TARGET iacq)
  # A tree outside the system's library path works without being told where its library is.
  file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(iacq PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS iacq RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  install(FILES tools/completion/iacq.bash RENAME iacq COMPONENT tools
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES docs/man/iacq.1 COMPONENT documentation
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endif()
if(TARGET with-virtual-camera)
  install(FILES docs/man/with-virtual-camera.1 COMPONENT documentation
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES virtualcamera/README.md RENAME virtual-camera.md COMPONENT documentation
    DESTINATION "${CMAKE_INSTALL_DOCDIR}")
endif()
install(FILES docs/man/imageacquisition.7 COMPONENT documentation
  DESTINATION "${CMAKE_INSTALL_MANDIR}/man7")
install(FILES README.md INSTALL.md CHANGELOG.md COMPONENT documentation
  DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY docs COMPONENT documentation DESTINATION "${CMAKE_INSTALL_DOCDIR}"
  FILES_MATCHING PATTERN "*.md" PATTERN "frame.png" PATTERN man EXCLUDE)
install(DIRECTORY examples COMPONENT documentation DESTINATION "${CMAKE_INSTALL_DOCDIR}")
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
