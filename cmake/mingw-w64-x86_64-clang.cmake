# 64-bit Windows with clang, a second opinion on the code: GCC's mingw-w64 headers and runtime, LLVM's compiler and linker.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake)

set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)

# clang does not find the C++ library of Debian's thread-model variants by itself, and that library uses GCC's emulated
# thread-local storage.
execute_process(COMMAND x86_64-w64-mingw32-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path(GET libgcc PARENT_PATH gcc)
set(CMAKE_CXX_FLAGS_INIT
  "-isystem ${gcc}/include/c++ -isystem ${gcc}/include/c++/x86_64-w64-mingw32 -femulated-tls")
# The C++ library needs winpthreads; GCC's driver adds it by itself.
set(link_flags "-fuse-ld=lld -L${gcc} -lpthread")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${link_flags}")
