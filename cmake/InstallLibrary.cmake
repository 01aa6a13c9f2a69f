# SPDX-License-Identifier: MIT
# What a program that uses the library needs: headers, the shared library, and the files by which
# CMake and pkg-config find both. The static library serves the unit tests and stays here.
include(CMakePackageConfigHelpers)

install(TARGETS ImageAcquisition EXPORT ImageAcquisitionTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
  NAMELINK_COMPONENT development)
# Beside the library, which looks for it there. Nobody links it.
install(TARGETS ImageAcquisitionSerial
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT serial NAMELINK_SKIP)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/imageacquisition" COMPONENT development
  FILES_MATCHING PATTERN "*.h")

# The session layer is a component of the package: find_package(ImageAcquisition COMPONENTS Session).
# It finds the library beside it, whoever needs it.
set_target_properties(ImageAcquisitionSession PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ImageAcquisitionSession EXPORT ImageAcquisitionSessionTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
  NAMELINK_COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/session/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/imageacquisition" COMPONENT development
  FILES_MATCHING PATTERN "*.h")

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ImageAcquisition")
install(EXPORT ImageAcquisitionTargets NAMESPACE ImageAcquisition::
  DESTINATION "${package_dir}" COMPONENT development)
install(EXPORT ImageAcquisitionSessionTargets NAMESPACE ImageAcquisition::
  DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/ImageAcquisitionConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/ImageAcquisitionConfig.cmake" INSTALL_DESTINATION "${package_dir}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/ImageAcquisitionConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/ImageAcquisitionConfig.cmake"
  "${PROJECT_BINARY_DIR}/ImageAcquisitionConfigVersion.cmake"
  DESTINATION "${package_dir}" COMPONENT development)

# The file finds the rest from its own place, so that a tree that is moved, or installed with
# another prefix than it was configured with, still works.
set(IMAGEACQUISITION_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH way_up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" way_up "${way_up}")
  set(IMAGEACQUISITION_PC_PREFIX "\${pcfiledir}/${way_up}")
endif()
foreach(folder IN ITEMS LIBDIR INCLUDEDIR)
  set(IMAGEACQUISITION_PC_${folder} "\${prefix}")
  # An absolute folder replaces the prefix.
  cmake_path(APPEND IMAGEACQUISITION_PC_${folder} "${CMAKE_INSTALL_${folder}}")
endforeach()
foreach(module IN ITEMS imageacquisition imageacquisition-session)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${module}.pc.in"
                 "${PROJECT_BINARY_DIR}/${module}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${module}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endforeach()
