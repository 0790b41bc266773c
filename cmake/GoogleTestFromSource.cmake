# GoogleTest from the sources of Debian's package googletest, compiled with each flavour's own compiler and flags.
set(GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "Sources of GoogleTest")
if(NOT EXISTS ${GOOGLETEST_SOURCES}/CMakeLists.txt)
  message(FATAL_ERROR "No GoogleTest in ${GOOGLETEST_SOURCES}: run tools/setup, or set GOOGLETEST_SOURCES.")
endif()

set(INSTALL_GTEST OFF)
set(BUILD_GMOCK ON)
if(WIN32)
  set(gtest_disable_pthreads ON)
endif()
add_subdirectory(${GOOGLETEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(target gtest gtest_main gmock gmock_main)
  target_compile_options(${target} PRIVATE -w)
  if(WIN32)
    target_include_directories(${target} BEFORE PUBLIC
      ${CMAKE_CURRENT_SOURCE_DIR}/cmake/googletest-without-threads)
  endif()
endforeach()
