# Shared build settings: one interface target carries the warnings and the
# sanitizer options, and one helper declares every test folder alike.

add_library(kelvary_options INTERFACE)
add_library(kelvary::options ALIAS kelvary_options)
target_compile_options(kelvary_options INTERFACE
  $<BUILD_INTERFACE:$<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic>>)
# GCC 12 at -O3 reports impossible overlaps inside std::string's own copy when
# a literal is concatenated with a string (GCC bug 105329, fixed in GCC 13).
# The warning says nothing about our code, so it is off for that compiler only.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(kelvary_options INTERFACE $<BUILD_INTERFACE:-Wno-restrict>)
endif()
if(KELVARY_FUZZ)
  # The library and the fuzz targets with the fuzzer's coverage and both
  # sanitizers; the fuzz targets add the fuzzer's own main when they link.
  target_compile_options(kelvary_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer>)
  target_link_options(kelvary_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all>)
endif()
if(KELVARY_SANITIZE)
  target_compile_options(kelvary_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer>)
  target_link_options(kelvary_options INTERFACE
    $<BUILD_INTERFACE:-fsanitize=address,undefined -fno-sanitize-recover=all>)
endif()

# kelvary_test_folder(<folder>): one GoogleTest executable from every .cpp in
# tests/<folder>, registered with CTest test by test.
function(kelvary_test_folder folder)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp")
  if(NOT sources)
    return()
  endif()
  set(target "kelvary_${folder}_tests")
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE kelvary::kelvary kelvary_test_support
                        GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE
    KELVARY_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    KELVARY_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST
                       PROPERTIES LABELS ${folder} TIMEOUT 300)
endfunction()
