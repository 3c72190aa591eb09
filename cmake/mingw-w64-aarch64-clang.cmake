# 64-bit Windows on ARM64, compiled only: Debian has no libraries to link for it, but clang and mingw-w64's headers.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64-clang.cmake)

set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER_TARGET aarch64-w64-mingw32)
string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem /usr/x86_64-w64-mingw32/include")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
