# Third-party libraries, all from Debian packages.

# Compile GoogleTest from source with the compiler and the options of the tests.
set(INSTALL_GTEST OFF)
set(gtest_disable_pthreads OFF)
block()
  # Its warnings are not ours.
  set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endblock()
include(GoogleTest)

# Header-only libraries. A cross build must not see the other headers of the host, so a separate
# folder holds links to these libraries only.
set(host_headers ${CMAKE_BINARY_DIR}/hostheaders)
file(MAKE_DIRECTORY ${host_headers})
set(linked_headers CLI boost rapidjson)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 19)
  # RapidJSON 1.1 assigns to a constant member in a function that is never used. Newer versions of
  # clang reject that, and newer packages of RapidJSON have no such function.
  file(READ /usr/include/rapidjson/document.h document)
  string(REPLACE "{ s = rhs.s; length = rhs.length; }" "= delete;" document "${document}")
  list(REMOVE_ITEM linked_headers rapidjson)
  file(COPY /usr/include/rapidjson DESTINATION ${host_headers} PATTERN document.h EXCLUDE)
  file(CONFIGURE OUTPUT ${host_headers}/rapidjson/document.h CONTENT "${document}" @ONLY)
endif()
foreach(name ${linked_headers})
  file(CREATE_LINK /usr/include/${name} ${host_headers}/${name} SYMBOLIC)
endforeach()
add_library(header_libraries INTERFACE)
target_include_directories(header_libraries SYSTEM INTERFACE ${host_headers})
if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 16)
  # Boost 1.74 casts constants to enumerations that have no such value.
  target_compile_options(header_libraries INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-enum-constexpr-conversion>)
endif()
