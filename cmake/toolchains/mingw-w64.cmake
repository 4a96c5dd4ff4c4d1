# Cross-compiles for 64-bit Windows with MinGW-w64 (posix threads).
# QT_MINGW_DIR names the unpacked Qt for MinGW; its host tools are the system's own.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QT_MINGW_DIR)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${QT_MINGW_DIR}")
set(CMAKE_PREFIX_PATH "${QT_MINGW_DIR}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(QT_HOST_PATH /usr CACHE PATH "Qt whose moc, rcc and uic run here")
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake CACHE PATH "CMake files of that Qt")
