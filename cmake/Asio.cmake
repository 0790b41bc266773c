# Asio without Boost: headers of the distribution, the same for every system. Reached through a folder of their own, so
# that a cross compiler sees nothing else of the machine that builds.
find_path(ASIO_FOLDER asio.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(asio_headers ${CMAKE_BINARY_DIR}/asio)
file(MAKE_DIRECTORY ${asio_headers})
file(CREATE_LINK ${ASIO_FOLDER}/asio.hpp ${asio_headers}/asio.hpp SYMBOLIC)
file(CREATE_LINK ${ASIO_FOLDER}/asio ${asio_headers}/asio SYMBOLIC)

add_library(asio INTERFACE)
target_include_directories(asio SYSTEM INTERFACE ${asio_headers})
target_compile_definitions(asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)
if(WIN32)
  # The -win32 compilers have no std::promise.
  target_compile_definitions(asio INTERFACE ASIO_DISABLE_STD_FUTURE)
  target_link_libraries(asio INTERFACE ws2_32 mswsock)
else()
  find_package(Threads REQUIRED)
  target_link_libraries(asio INTERFACE Threads::Threads)
endif()
