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
foreach(name CLI boost rapidjson)
  file(CREATE_LINK /usr/include/${name} ${host_headers}/${name} SYMBOLIC)
endforeach()
add_library(header_libraries INTERFACE)
target_include_directories(header_libraries SYSTEM INTERFACE ${host_headers})
