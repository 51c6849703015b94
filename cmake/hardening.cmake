# Hardening of the Windows images. tests/architecture/check_hardening.py checks the built files;
# SECURITY.md documents the options.

find_package(Python3 REQUIRED COMPONENTS Interpreter)
enable_language(RC)

add_link_options(-Wl,--dynamicbase,--high-entropy-va,--nxcompat)
# Reproducible builds: the output depends neither on the folder nor on the time of the build.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
add_link_options(-Wl,--no-insert-timestamp)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  include(lld)
endif()

set(image_sources ${CMAKE_SOURCE_DIR}/zoapal/protons/image/windows)
add_library(stack_guard STATIC ${image_sources}/stackguard.c)
target_include_directories(stack_guard PRIVATE ${CMAKE_SOURCE_DIR})
target_compile_options(stack_guard PRIVATE -Wall -Wextra -Wconversion -Wshadow)

# No stack protector in kernel-side images: no loader sets a random cookie in them.
set(in_user_mode $<NOT:$<BOOL:$<TARGET_PROPERTY:KERNEL_SIDE>>>)
target_compile_options(house_rules INTERFACE $<${in_user_mode}:-fstack-protector-strong>)
target_link_libraries(house_rules INTERFACE $<${in_user_mode}:stack_guard>)

# quenra_hardened(NAME DESCRIPTION text [DEPENDENT_LOAD_FLAGS flags])
#
# Adds a version resource and a load configuration to a library or a program. With the configuration
# the loader sets a random stack cookie and searches imported libraries by the given flags of
# LoadLibraryEx. Makes imports, start-up tables and resources read-only.
function(quenra_hardened name)
  cmake_parse_arguments(arg "" "DESCRIPTION;DEPENDENT_LOAD_FLAGS" "" ${ARGN})
  if(NOT arg_DEPENDENT_LOAD_FLAGS)
    set(arg_DEPENDENT_LOAD_FLAGS 0)
  endif()
  get_target_property(output_name ${name} OUTPUT_NAME)
  if(NOT output_name)
    set(output_name ${name})
  endif()
  get_target_property(type ${name} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(file_name ${output_name}.exe)
    set(file_type VFT_APP)
  else()
    set(file_name ${output_name}.dll)
    set(file_type VFT_DLL)
  endif()
  string(REPLACE "." "," version_numbers ${PROJECT_VERSION},0)
  set(version_source ${CMAKE_CURRENT_BINARY_DIR}/${name}_version.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${version_source} @ONLY)
  target_sources(${name} PRIVATE ${version_source})

  add_library(${name}_load_configuration OBJECT ${image_sources}/loadconfiguration.c)
  target_link_libraries(${name}_load_configuration PRIVATE house_rules)
  target_compile_definitions(${name}_load_configuration PRIVATE
    DEPENDENT_LOAD_FLAGS=${arg_DEPENDENT_LOAD_FLAGS})
  target_link_libraries(${name} PRIVATE ${name}_load_configuration stack_guard)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    quenra_database(${name} ${file_name})
  else()
    set(enter ${CMAKE_SOURCE_DIR}/cmake/enterloadconfiguration.py)
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${enter}
      ${CMAKE_SOURCE_DIR}/cmake/peheaders.py)
    add_custom_command(TARGET ${name} POST_BUILD
      COMMAND ${Python3_EXECUTABLE} ${enter} $<TARGET_FILE:${name}>)
  endif()
endfunction()
