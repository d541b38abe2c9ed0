# brindlecast_ship(target): puts an executable of the product into bin/, the folder that is packaged as it stands.
function(brindlecast_ship target)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin"
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
endfunction()

# The DLLs and tools that the modules need, copied beside them once per configuration.
if(WIN32)
  file(GLOB third_party_binaries CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/build/sysroot/bin/*.dll"
    "${CMAKE_SOURCE_DIR}/build/sysroot/bin/*.exe")
  add_custom_target(third_party_binaries ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/bin"
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${third_party_binaries} "${CMAKE_BINARY_DIR}/bin"
    VERBATIM)
  if(NOT third_party_binaries)
    message(WARNING "No third-party binaries in build/sysroot: run third_party/build first")
    set_property(TARGET third_party_binaries PROPERTY EXCLUDE_FROM_ALL ON)
  endif()
endif()
