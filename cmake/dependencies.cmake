# Libraries of others, all from Debian's packages.

# GoogleTest is compiled from its sources, so that it has the compiler and the options of the tests.
set(INSTALL_GTEST OFF)
set(gtest_disable_pthreads OFF)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)

# Header-only libraries. A cross build must not see the rest of the host's headers, so each is linked
# into a folder of its own.
set(host_headers ${CMAKE_BINARY_DIR}/hostheaders)
file(MAKE_DIRECTORY ${host_headers})
foreach(name CLI boost rapidjson)
  file(CREATE_LINK /usr/include/${name} ${host_headers}/${name} SYMBOLIC)
endforeach()
add_library(header_libraries INTERFACE)
target_include_directories(header_libraries SYSTEM INTERFACE ${host_headers})
