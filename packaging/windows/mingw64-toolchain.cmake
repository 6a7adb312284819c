# SPDX-License-Identifier: GPL-3.0-or-later
# CMake toolchain: Windows x86-64 with Debian's mingw-w64 (posix threads).
#   cmake -DCMAKE_TOOLCHAIN_FILE=.../mingw64-toolchain.cmake
# The cross-built libraries are looked for in $WINX_SYSROOT (default ~/.cache/tracksmith-windows/sysroot).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_SYSTEM_VERSION 10)
set(_t x86_64-w64-mingw32)
# The -posix names matter: the plain names may be the win32-threads variant,
# in which std::thread and std::mutex do not exist.
set(CMAKE_C_COMPILER   ${_t}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_t}-g++-posix)
set(CMAKE_RC_COMPILER  ${_t}-windres)
set(CMAKE_AR     ${_t}-gcc-ar-posix)
set(CMAKE_RANLIB ${_t}-gcc-ranlib-posix)

if(DEFINED ENV{WINX_SYSROOT})
  set(WINX_SYSROOT "$ENV{WINX_SYSROOT}" CACHE PATH "cross-built libraries")
else()
  set(WINX_SYSROOT "$ENV{HOME}/.cache/tracksmith-windows/sysroot" CACHE PATH "cross-built libraries")
endif()
set(CMAKE_FIND_ROOT_PATH "${WINX_SYSROOT}" "/usr/${_t}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${WINX_SYSROOT}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")

# Qt: the native moc/rcc/uic of the same version come from Debian's packages.
set(QT_HOST_PATH "/usr" CACHE PATH "")
set(QT_HOST_PATH_CMAKE_DIR "/usr/lib/x86_64-linux-gnu/cmake" CACHE PATH "")

# Run test programs (add_test, gtest/QTest discovery) under Wine where there is one.
set(_wr "${CMAKE_CURRENT_LIST_DIR}/wine-run.sh")
if(EXISTS "${_wr}")
  set(CMAKE_CROSSCOMPILING_EMULATOR "${_wr}" CACHE FILEPATH "")
endif()
