#ifndef ZOAPAL_PROTONS_FILES_WINDOWSU_FOLDERS_H
#define ZOAPAL_PROTONS_FILES_WINDOWSU_FOLDERS_H

#include <cstdint>
#include <string>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

// Returns the path of the system's temporary directory, with a separator at its end. Throws
// std::system_error ("temp_directory_path") if there is none; std::bad_alloc.
[[nodiscard]] std::u16string temporaryDirectory();

// Creates the missing folders above a path, with inherited access rights. Throws std::system_error,
// std::bad_alloc.
void createParentFolders(const std::u16string& path);

// Creates a folder that only its owner, the system and administrators can use, and whose entries inherit
// that. If the caller's integrity level is above medium, processes of lower levels cannot write there. While
// the handle is open, no process renames, removes or replaces the folder or one above it.
//
// A folder that exists is protected likewise; a link or a file in its place is a failure. Throws
// std::system_error, and leaves no folder that it has created; std::bad_alloc.
[[nodiscard]] tUniqueFile createProtectedFolder(const std::u16string& path);

// Creates a file for writing, or empties an existing one; other processes can read and write it. The path is
// in the code page of the process. Returns an invalid handle, and GetLastError the reason.
[[nodiscard]] tUniqueFile createFile(const std::string& path) noexcept;
// Writes to a file from its current position on. Returns false, and GetLastError the reason, if the system
// refuses a part; those before it are written.
[[nodiscard]] bool writeBytes(const tUniqueFile& file, const uint8_t* bytes,
                              uint64_t byteCount) noexcept;

// Opens a file for reading. While the handle is open, other processes can read the file, but not write,
// rename or remove it. Returns an invalid handle, and GetLastError the reason: ERROR_SHARING_VIOLATION if
// another process has the file open for writing.
[[nodiscard]] tUniqueFile holdFile(const std::u16string& path) noexcept;

// Removes a folder with its contents, read-only entries included, as far as the system allows. Never follows
// a link: a junction or symbolic link is removed itself, and the path may be one. Only the links in the path
// of the parent folder are followed. An entry that cannot be removed stays, and so do the folders above it.
void removeTree(const std::u16string& path) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
