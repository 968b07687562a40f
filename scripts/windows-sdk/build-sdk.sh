#!/usr/bin/env bash
# Builds korvatek-windows-sdk.tar.xz from Debian 12 sources: static Qt 6 (Core, Gui, Widgets, Test) and
# static libpng and GoogleTest for 64-bit Windows, cross-compiled with Debian's mingw-w64 (posix threads).
# scripts/test-windows.sh runs it when no prepared archive is at hand. About 50 minutes on 2 cores, almost
# all of it Qt. Needs root (or sudo) for apt-get. Usage: build-sdk.sh [WORKDIR]; the archive ends up in WORKDIR.
set -euo pipefail
work=$(realpath -m "${1:-/tmp/korvatek-windows-sdk-build}")
out="$work/korvatek-windows-sdk"
mkdir -p "$work" && cd "$work"

export DEBIAN_FRONTEND=noninteractive
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
$SUDO apt-get update
$SUDO apt-get install -y --no-install-recommends g++-mingw-w64-x86-64-posix libz-mingw-w64-dev mingw-w64-tools \
  qt6-base-dev qt6-base-dev-tools googletest cmake ninja-build dpkg-dev xz-utils
# Source packages: add deb-src entries beside the binary ones.
if ! grep -rqs '^Types:.*deb-src' /etc/apt/sources.list.d/ && ! grep -qs '^deb-src' /etc/apt/sources.list; then
  sed 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources |
    $SUDO tee /etc/apt/sources.list.d/debian-src.sources >/dev/null
  $SUDO apt-get update
fi

cat > toolchain.cmake <<TC
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER   x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER  x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 $out/deps)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
TC
zlib=(-DZLIB_LIBRARY=/usr/x86_64-w64-mingw32/lib/libz.a -DZLIB_INCLUDE_DIR=/usr/x86_64-w64-mingw32/include)

# libpng (static; zlib's static library, so no zlib1.dll is needed at run time)
[ -d libpng-src ] || { mkdir -p libpng-src && (cd libpng-src && apt-get source libpng1.6 ||
  apt-get source libpng1.6=1.6.39-2+deb12u5); }
cmake -S libpng-src/libpng1.6-*/ -B build-libpng -G Ninja -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$out/deps" -DPNG_SHARED=OFF -DPNG_STATIC=ON \
  -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF "${zlib[@]}"
ninja -C build-libpng && ninja -C build-libpng install

# GoogleTest from Debian's source copy
cmake -S /usr/src/googletest -B build-gtest -G Ninja -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$out/deps" -DBUILD_GMOCK=OFF
ninja -C build-gtest && ninja -C build-gtest install

# qtbase, static, only what a Widgets program and its QtTest tests need; host tools from Debian's Qt.
[ -d qt-src ] || { mkdir -p qt-src && (cd qt-src && apt-get source qt6-base); }
sed -i "s#$out/deps##" toolchain.cmake   # Qt finds only the mingw sysroot
mkdir -p build-qt && cd build-qt
../qt-src/qt6-base-*/configure -prefix "$out/qt6" -xplatform win32-g++ -qt-host-path /usr -release -static \
  -no-opengl -nomake examples -nomake tests \
  -no-feature-sql -no-feature-network -no-feature-dbus -no-feature-concurrent -no-feature-xml \
  -no-feature-vulkan -no-feature-tabletevent \
  -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype -qt-harfbuzz -qt-pcre -qt-doubleconversion \
  -- -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake
ninja && cmake --install .
cd "$work"
rm -rf "$out/qt6/doc"
tar -cJf korvatek-windows-sdk.tar.xz korvatek-windows-sdk
echo "$work/korvatek-windows-sdk.tar.xz"
