# Toolchain: 64-bit Windows from Linux, with clang and lld, and the headers and runtime libraries of
# Debian's mingw-w64 and GCC. It writes program databases (PDB), which Visual Studio and WinDbg
# require. Programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# One version for every system: code, warnings and databases then agree.
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_AR /usr/bin/llvm-ar-19)
set(CMAKE_RANLIB /usr/bin/llvm-ranlib-19)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_OBJDUMP /usr/bin/x86_64-w64-mingw32-objdump)
set(CMAKE_NM /usr/bin/x86_64-w64-mingw32-nm)
set(PDB_UTILITY /usr/bin/llvm-pdbutil-19)
set(SYMBOLIZER /usr/bin/llvm-symbolizer-19)

# clang searches GCC's folder by its version and does not find Debian's, which is named 12-posix.
execute_process(COMMAND x86_64-w64-mingw32-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE gcc_library OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc_folder ${gcc_library} DIRECTORY)
set(gcc_headers ${gcc_folder}/include/c++)
set(CMAKE_CXX_FLAGS_INIT "-stdlib++-isystem ${gcc_headers} -cxx-isystem ${gcc_headers}/x86_64-w64-mingw32 -cxx-isystem ${gcc_headers}/backward")
# GCC's C++ library has thread-local variables in the emulated form.
string(APPEND CMAKE_CXX_FLAGS_INIT " -femulated-tls")
# The headers of mingw-w64 include mm3dnow.h, which warns of itself.
string(APPEND CMAKE_C_FLAGS_INIT " -D_CLANG_DISABLE_CRT_DEPRECATION_WARNINGS")
string(APPEND CMAKE_CXX_FLAGS_INIT " -D_CLANG_DISABLE_CRT_DEPRECATION_WARNINGS")

# lld knows no --push-state.
set(CMAKE_C_LINK_LIBRARY_USING_WHOLE_ARCHIVE
  LINKER:--whole-archive <LINK_ITEM> LINKER:--no-whole-archive)
set(CMAKE_C_LINK_LIBRARY_USING_WHOLE_ARCHIVE_SUPPORTED TRUE)
set(CMAKE_CXX_LINK_LIBRARY_USING_WHOLE_ARCHIVE ${CMAKE_C_LINK_LIBRARY_USING_WHOLE_ARCHIVE})
set(CMAKE_CXX_LINK_LIBRARY_USING_WHOLE_ARCHIVE_SUPPORTED TRUE)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Link the runtime libraries statically: no program or library needs them at run time.
foreach(kind EXE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -pthread -fuse-ld=lld-19 -L${gcc_folder}")
endforeach()
