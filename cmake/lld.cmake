# Link with lld: images without symbols, and a program database (PDB) for each delivered image, next to
# it: bin/quenra.dll and bin/quenra.dll.pdb of the target quenra_dll, bin/quenra.exe and
# bin/quenra.exe.pdb of quenra_exe. The images need no stripping.
# Only for the toolchain mingw-w64-clang.cmake.

add_compile_options(-gcodeview -gno-codeview-command-line -fdebug-compilation-dir=.)
# The debugging information of the runtime libraries has another format: -s leaves it out. Without
# unused sections an image is a quarter smaller. -release writes the checksum.
add_link_options(-Wl,-s,--gc-sections,--Xlink=-release)

# A copy of the C++ library, because the original loses the unwinding tables of its inline functions.
# It comes before the folder of the original, relative to the build folder in which the linker runs.
set(runtime ${CMAKE_BINARY_DIR}/runtime)
set(repair ${CMAKE_SOURCE_DIR}/cmake/repairunwinding.py)
find_library(gcc_cxx_library libstdc++.a PATHS ${gcc_folder} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
  REQUIRED)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${repair} ${gcc_cxx_library})
file(MAKE_DIRECTORY ${runtime})
execute_process(COMMAND ${Python3_EXECUTABLE} ${repair} ${gcc_cxx_library} ${runtime}/libstdc++.a
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_RANLIB} ${runtime}/libstdc++.a COMMAND_ERROR_IS_FATAL ANY)
foreach(kind EXE SHARED)
  string(PREPEND CMAKE_${kind}_LINKER_FLAGS "-Lruntime ")
endforeach()

# quenra_definition(TARGET FILE)
#
# Links a library with a module definition file. The database contains the command line of the linker,
# so the command names a copy relative to the build folder.
function(quenra_definition name file)
  set(copy ${name}.def)
  configure_file(${file} ${CMAKE_BINARY_DIR}/${copy} COPYONLY)
  target_link_options(${name} PRIVATE ${copy})
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${CMAKE_BINARY_DIR}/${copy})
endfunction()

# quenra_database(TARGET FILE_NAME)
#
# Writes the database FILE_NAME.pdb next to the image. The image names it without a folder: a debugger
# finds it next to the image, or by its identifier in a symbol server. Sources have the paths that
# they have in the repository, below C:\quenra.
function(quenra_database name file_name)
  set(database bin/${file_name}.pdb)
  target_link_options(${name} PRIVATE
    "SHELL:-Wl,--pdb=${database} -Wl,--Xlink=-pdbaltpath:${file_name}.pdb"
    "SHELL:-Wl,--Xlink=-pdbsourcepath:C:\\\\quenra")
  set_property(TARGET ${name} APPEND PROPERTY ADDITIONAL_CLEAN_FILES ${CMAKE_BINARY_DIR}/${database})
endfunction()
