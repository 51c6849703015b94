# Compiler options of every target of the project: link `house_rules`.
# CMAKE_COMPILE_WARNING_AS_ERROR makes warnings errors: an additional warning of a newer compiler
# must not break a user's build, so only the ci- presets set it.

add_library(house_rules INTERFACE)
target_include_directories(house_rules INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
target_compile_options(house_rules INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor>)

set(QUENRA_SANITIZERS "" CACHE STRING "Sanitizers of a native build, in the form of -fsanitize=")
option(QUENRA_NATIVE_LIBRARY "Build the library as a shared library of this system, for bindings" OFF)
option(QUENRA_COVERAGE "Count, in a native build, which lines and branches run" OFF)
option(QUENRA_CONDITIONS "With QUENRA_COVERAGE: count the outcomes of conditions; GCC 14 or newer" OFF)

# The oldest Windows that the library supports: 6.2, which is Windows 8 and Windows Server 2012. The
# headers hide newer functions, the loader of an older system refuses the images, and the tests
# windows_version_… check the imports.
set(windows_version_major 6)
set(windows_version_minor 2)
if(WIN32)
  target_compile_definitions(house_rules INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX
    _WIN32_WINNT=0x0${windows_version_major}0${windows_version_minor})
  add_link_options(
    -Wl,--major-os-version=${windows_version_major},--minor-os-version=${windows_version_minor}
    -Wl,--major-subsystem-version=${windows_version_major}
    -Wl,--minor-subsystem-version=${windows_version_minor})
else()
  # The native build compiles the library's own source against Wine's Windows headers;
  # tests/fakewindows implements the functions. Windows has 16-bit wide characters, so every source
  # that includes those headers must be compiled with -fshort-wchar.
  add_compile_options(-fshort-wchar)
  target_compile_definitions(house_rules INTERFACE WINE_UNICODE_NATIVE WIN32_LEAN_AND_MEAN NOMINMAX)
  target_include_directories(house_rules SYSTEM INTERFACE /usr/include/wine/wine/windows
    ${CMAKE_SOURCE_DIR}/tests/fakewindows/include)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    target_compile_options(house_rules INTERFACE -Wthread-safety)
  endif()
  if(QUENRA_SANITIZERS)
    add_compile_options(-fsanitize=${QUENRA_SANITIZERS} -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QUENRA_SANITIZERS})
  endif()
  if(QUENRA_COVERAGE)
    # Plain counters would lose increments of parallel threads, and even become negative.
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
    if(QUENRA_CONDITIONS)
      # An expression of more than 64 conditions would be left out.
      add_compile_options(-fcondition-coverage -Werror=coverage-too-many-conditions)
    endif()
  endif()
endif()
