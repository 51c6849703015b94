# quenra_test(NAME SOURCES file... [LIBRARIES target...] [BOTH_FINAL_STATUSES])
#
# Adds a GoogleTest program. A native build registers each of its tests with CTest. On Windows the
# complete program is one CTest test, because starting a program costs more there than most tests;
# these run one at a time, since they share the simulated machine.
#
# With BOTH_FINAL_STATUSES the native tests also run under the prefix "dequeue.", with a fake
# Windows that stores the final status of a request only when its packet is dequeued.
function(quenra_test name)
  cmake_parse_arguments(arg "BOTH_FINAL_STATUSES" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE house_rules ${arg_LIBRARIES} gmock gtest_main)
  # Assertions expand to much code that runs once: optimizing it would take most of the build time.
  target_compile_options(${name} PRIVATE -O0)
  if(WIN32 AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # Complete debug information names thread-local variables, which have no symbol of their own in the
    # emulated form.
    target_compile_options(${name} PRIVATE -gline-tables-only)
  endif()
  if(WIN32)
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK simulated_machine TIMEOUT 300)
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
    if(arg_BOTH_FINAL_STATUSES)
      gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
        TEST_PREFIX dequeue.
        PROPERTIES ENVIRONMENT FAKE_WINDOWS_FINAL_STATUS=dequeue)
    endif()
  endif()
endfunction()
