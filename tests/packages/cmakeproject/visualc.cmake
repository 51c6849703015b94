# Clang with the object format, the linker and the headers' annotations of Visual C++. The build system
# has no runtime library of Visual C++, so that programs must do without one; the annotations' header is
# that of mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_C_FLAGS_INIT "-ffreestanding -Wno-ignored-attributes -idirafter /usr/share/mingw-w64/include")
set(CMAKE_EXE_LINKER_FLAGS_INIT -nostdlib)
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_MT llvm-mt)
set(CMAKE_RC_COMPILER llvm-rc)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_MSVC_RUNTIME_LIBRARY "")
