# Imported targets of the third-party libraries: for Windows those that third_party/build made, natively Debian's own
# packages of the same versions.
set(ffmpeg_libraries avcodec avformat avutil swscale swresample avfilter)

if(WIN32)
  set(BRINDLECAST_SYSROOT "${CMAKE_SOURCE_DIR}/build/sysroot")
  foreach(library IN LISTS ffmpeg_libraries)
    add_library(ffmpeg::${library} INTERFACE IMPORTED GLOBAL)
    target_link_libraries(ffmpeg::${library} INTERFACE "${BRINDLECAST_SYSROOT}/lib/lib${library}.dll.a")
    target_include_directories(ffmpeg::${library} SYSTEM INTERFACE "${BRINDLECAST_SYSROOT}/include")
  endforeach()
else()
  find_package(PkgConfig REQUIRED)
  foreach(library IN LISTS ffmpeg_libraries)
    pkg_check_modules(${library} REQUIRED IMPORTED_TARGET GLOBAL lib${library})
    add_library(ffmpeg::${library} ALIAS PkgConfig::${library})
  endforeach()
endif()
