# The -win32 compilers: nothing here starts a thread, and the run time of the -posix ones imports functions that
# Windows 2000 lacks. They have no std::thread, std::mutex or std::condition_variable.
set(CMAKE_C_COMPILER ${MINGW_TRIPLE}-gcc-win32)
set(CMAKE_CXX_COMPILER ${MINGW_TRIPLE}-g++-win32)
set(CMAKE_RC_COMPILER ${MINGW_TRIPLE}-windres)
set(CMAKE_AR ${MINGW_TRIPLE}-gcc-ar-win32)
set(CMAKE_RANLIB ${MINGW_TRIPLE}-gcc-ranlib-win32)

# Nothing of the machine that builds may be found by accident.
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
