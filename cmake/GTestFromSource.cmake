# GoogleTest is compiled from Debian's source package, so that it carries our sanitizers and our Windows runtime.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
foreach(name gtest gtest_main gmock gmock_main)
  if(NOT TARGET GTest::${name})
    add_library(GTest::${name} ALIAS ${name})
  endif()
endforeach()

# brindlecast_test(name sources…): a test program; where it goes is the folder's affair.
function(brindlecast_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE brindlecast_settings GTest::gmock_main)
  if(WIN32)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/test_bin")
  endif()
endfunction()
