# SPDX-License-Identifier: MIT
# Build options, the vendor's USB ids and the flags that every target of the project shares.

option(IMAGEACQUISITION_BUILD_TOOLS "Build the command-line tool" ON)
option(IMAGEACQUISITION_BUILD_VIRTUALCAMERA "Build the virtual camera" ON)
option(IMAGEACQUISITION_BUILD_EXAMPLES "Build the examples" ON)
option(IMAGEACQUISITION_BUILD_TESTS "Build the tests" ON)
option(IMAGEACQUISITION_BUILD_KERNEL_TESTS "Build the programs that run in the virtual machine" ON)
option(IMAGEACQUISITION_BUILD_BENCHMARKS "Build what measures the library, and its test" OFF)
option(IMAGEACQUISITION_ABI_CHECK "Keep the debug information that the ABI check reads" OFF)
option(IMAGEACQUISITION_WARNINGS_AS_ERRORS "Stop at the first compiler warning" OFF)
set(IMAGEACQUISITION_SANITIZE "" CACHE STRING
    "Sanitizers to build with: empty, 'address,undefined', 'address', 'undefined' or 'thread'")

# Placeholders that are assigned to nobody; whoever ships the library for a camera family sets
# that family's own numbers.
set(IMAGEACQUISITION_VENDOR_ID "7a76" CACHE STRING "USB vendor id of the vendor's cameras")
set(IMAGEACQUISITION_PRODUCT_ID "ca01" CACHE STRING "USB product id of the vendor's cameras")
foreach(id IN ITEMS VENDOR PRODUCT)
  if(NOT "${IMAGEACQUISITION_${id}_ID}" MATCHES "^[0-9a-f][0-9a-f][0-9a-f][0-9a-f]$")
    message(FATAL_ERROR "IMAGEACQUISITION_${id}_ID must be four lower-case hexadecimal digits, "
                        "as sysfs prints them; it is '${IMAGEACQUISITION_${id}_ID}'")
  endif()
endforeach()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(IMAGEACQUISITION_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()

# What tests are preloaded with to see mocked devices. In a build with a sanitizer its runtime comes
# first: it does not see the calls of libraries that come before it.
set(IMAGEACQUISITION_SANITIZER_RUNTIME "")
set(IMAGEACQUISITION_TEST_PRELOAD "libumockdev-preload.so.0")
if(IMAGEACQUISITION_SANITIZE)
  add_compile_options(-fsanitize=${IMAGEACQUISITION_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${IMAGEACQUISITION_SANITIZE})
  # The check of virtual tables looks at memory through a pipe of its own for each object, and calls
  # every object broken when there is none. Some tests run the process out of descriptors.
  if(IMAGEACQUISITION_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize=vptr)
  endif()
  if(IMAGEACQUISITION_SANITIZE MATCHES "(a)ddress|(t)hread") # libasan.so, libtsan.so
    execute_process(
      COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=lib${CMAKE_MATCH_1}${CMAKE_MATCH_2}san.so"
      OUTPUT_VARIABLE IMAGEACQUISITION_SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE)
    string(PREPEND IMAGEACQUISITION_TEST_PRELOAD "${IMAGEACQUISITION_SANITIZER_RUNTIME}:")
  endif()
endif()
