# Cross-building for 64-bit Windows with Debian's mingw-w64 (posix threads, for std::thread).
# Used directly for a build without the window, or chained from Qt's own toolchain file
# (QT_CHAINLOAD_TOOLCHAIN_FILE) by scripts/test-windows.sh. KORVATEK_WINDOWS_SDK names the
# unpacked folder with the static Qt, libpng and GoogleTest.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT KORVATEK_WINDOWS_SDK AND DEFINED ENV{KORVATEK_WINDOWS_SDK})
  set(KORVATEK_WINDOWS_SDK "$ENV{KORVATEK_WINDOWS_SDK}")
endif()
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
if(KORVATEK_WINDOWS_SDK)
  list(APPEND CMAKE_FIND_ROOT_PATH ${KORVATEK_WINDOWS_SDK}/deps ${KORVATEK_WINDOWS_SDK}/qt6)
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Static zlib from libz-mingw-w64-dev, so no zlib1.dll is needed beside the programs.
set(ZLIB_LIBRARY /usr/x86_64-w64-mingw32/lib/libz.a CACHE FILEPATH "")
set(ZLIB_INCLUDE_DIR /usr/x86_64-w64-mingw32/include CACHE PATH "")

# Programs that need no DLL beside them: the C and C++ runtimes, winpthread and everything else
# linked in; only system DLLs are imported.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KORVATEK_WINDOWS_SDK)
