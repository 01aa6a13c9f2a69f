# SPDX-License-Identifier: MIT
# What the library and the virtual camera are both built and tested with.
find_package(PkgConfig REQUIRED)
pkg_check_modules(V4L2 REQUIRED IMPORTED_TARGET libv4l2)
pkg_check_modules(UDEV REQUIRED IMPORTED_TARGET libudev)
pkg_check_modules(USB REQUIRED IMPORTED_TARGET libusb-1.0)

if(IMAGEACQUISITION_BUILD_TESTS)
  enable_testing()
  include(GoogleTest)
  find_package(GTest REQUIRED)
endif()
