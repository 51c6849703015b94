# Defines the target quenra::quenra, for C and C++, with MinGW and with Visual C++ or compatible
# compilers. The files are found relative to this one, so the package may be moved.
if(NOT WIN32 OR NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(quenra_FOUND FALSE)
  set(quenra_NOT_FOUND_MESSAGE
    "quenra is for 64-bit Windows, and CMake builds for ${CMAKE_SYSTEM_NAME}. Choose a compiler or a toolchain file for 64-bit Windows.")
  return()
endif()

get_filename_component(quenra_folder "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(NOT TARGET quenra::quenra)
  add_library(quenra::quenra SHARED IMPORTED)
  if(MINGW)
    set(quenra_import_library libquenra.dll.a)
  else()
    set(quenra_import_library quenra.lib)
  endif()
  set_target_properties(quenra::quenra PROPERTIES
    IMPORTED_LOCATION "${quenra_folder}/bin/quenra.dll"
    IMPORTED_IMPLIB "${quenra_folder}/lib/${quenra_import_library}"
    INTERFACE_INCLUDE_DIRECTORIES "${quenra_folder}/include")
  unset(quenra_import_library)
endif()
unset(quenra_folder)
