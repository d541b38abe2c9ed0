set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(BRINDLECAST_SANITIZERS "" CACHE STRING "Sanitizers of a native build, separated by commas")
option(BRINDLECAST_FUZZ "Build the fuzz targets (clang only)" OFF)

# Every target of ours links this one: warnings, include roots, platform definitions.
add_library(brindlecast_settings INTERFACE)
target_include_directories(brindlecast_settings INTERFACE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/src")
target_compile_options(brindlecast_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror -fno-strict-aliasing)

if(WIN32)
  target_compile_definitions(brindlecast_settings INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT WINVER=0x0A00 _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000000)
  # g++ of the posix thread flavour puts -lpthread on every link line and would take the import library of
  # libwinpthread. A folder with the static archive alone, first on the line, keeps the DLL out.
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libwinpthread.a
    OUTPUT_VARIABLE winpthread_archive OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(static_runtime "${CMAKE_BINARY_DIR}/static_runtime")
  file(MAKE_DIRECTORY "${static_runtime}")
  configure_file("${winpthread_archive}" "${static_runtime}/libwinpthread.a" COPYONLY)
  configure_file("${winpthread_archive}" "${static_runtime}/libpthread.a" COPYONLY)
  add_link_options("-L${static_runtime}" -static-libgcc -static-libstdc++ -Wl,--dynamicbase -Wl,--nxcompat
    -Wl,--high-entropy-va)
elseif(BRINDLECAST_SANITIZERS)
  set(sanitize "-fsanitize=${BRINDLECAST_SANITIZERS}" -fno-omit-frame-pointer)
  if(BRINDLECAST_SANITIZERS MATCHES "undefined")
    list(APPEND sanitize -fno-sanitize-recover=undefined)
  endif()
  if(BRINDLECAST_FUZZ)
    list(APPEND sanitize -fsanitize=fuzzer-no-link)
  endif()
  add_compile_options(${sanitize} -O1 -g)
  add_link_options(${sanitize})
endif()
