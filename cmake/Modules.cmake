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

# brindlecast_link_modules(target folder): links to the modules and to what they need, for an executable that looks for them
# beside itself in a folder of its own under the build folder.
function(brindlecast_link_modules target folder)
  add_dependencies(${target} third_party_binaries)
  foreach(module LAVSplitter LAVVideo LAVAudio AudioSwitcher MpcVideoRenderer64)
    add_dependencies(${target} ${module})
    list(APPEND names "${module}.ax")
  endforeach()
  foreach(binary IN LISTS third_party_binaries)
    get_filename_component(name "${binary}" NAME)
    list(APPEND names "${name}")
  endforeach()
  foreach(name IN LISTS names)
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
      COMMAND ${CMAKE_COMMAND} -E create_symlink "../bin/${name}" "${folder}/${name}")
  endforeach()
endfunction()
