// The folder and the files of an update.
#ifndef SOURCE_USER_UPDATE_UPDATEFILES_H
#define SOURCE_USER_UPDATE_UPDATEFILES_H

#include <string>
#include <string_view>
#include <vector>

#include "source/user/firmware/tfirmwarepayload.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// The folder of one update in the system's temporary directory, and the guard of its files: other processes
// cannot replace the folder, nor change the files, until the object ends or the folder is removed.
// Constructing it creates nothing.
class tUpdateFolder {
 public:
  // The name is ASCII. Throws std::system_error ("temp_directory_path") when the system has no temporary
  // directory; std::bad_alloc.
  explicit tUpdateFolder(const std::string& name);

  // Returns the path of a file of the update. A name with a drive letter or two leading separators is a
  // path of its own.
  [[nodiscard]] std::u16string pathOf(std::u16string_view fileName) const;

  // Creates the folder, with any missing parents, for its owner, the system and administrators only.
  // Does nothing when this object has created it. Throws std::system_error
  // ("create_directories"), std::bad_alloc.
  void create();
  // Keeps other processes from writing, renaming and removing a file of the update. Returns false if
  // another process has the file open for writing. A file that cannot be opened for another reason, and the
  // name of an image for another machine or a device, stay unguarded. Throws std::bad_alloc.
  [[nodiscard]] bool hold(const std::u16string& path);
  // Releases the files, and defers their holding and that of further files until holdDeferred(). Returns
  // false if it is deferred already, or no file is held.
  [[nodiscard]] bool deferHolding() noexcept;
  // Holds the files that wait for it; returns as hold() does.
  [[nodiscard]] bool holdDeferred() noexcept;
  // Releases the folder and its files, and removes the folder with all its contents, as far as the system
  // allows. Never follows a link.
  void remove() noexcept;

 private:
  struct tHeldFile {
    std::u16string path;
    nZOAPAL000::tUniqueFile handle;
  };

  [[nodiscard]] static bool open(tHeldFile& file) noexcept;

  std::u16string path_;
  nZOAPAL000::tUniqueFile folder_;
  std::vector<tHeldFile> files_;
  bool isDeferred_ = false;
};

// Writes each payload that has a file name to its file, and has the folder hold it. Reports
// QUENRA_STATUS_UPDATE_ENVIRONMENT when the folder cannot be created, a name cannot be converted, a
// file cannot be opened or another process has it open for writing; removes the folder only for the
// last two. A file that cannot be written to its end is not reported. Does nothing when the status
// holds an error. Throws std::bad_alloc.
void writePayloadFiles(const tFirmwarePayloads& payloads, tUpdateFolder& folder,
                       zoerr::Status& status);

// Returns the path of a payload's file in the code page of the process. Reports
// QUENRA_STATUS_UPDATE_ENVIRONMENT when the name cannot be converted. Does nothing when the status
// holds an error. Throws std::bad_alloc.
[[nodiscard]] std::string payloadFilePath(const tFirmwarePayload& payload,
                                          const tUpdateFolder& folder, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
