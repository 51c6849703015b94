#ifndef SOURCE_USER_UPDATE_TUPDATEFOLDER_H
#define SOURCE_USER_UPDATE_TUPDATEFOLDER_H

#include <string>
#include <string_view>

namespace nQUENRA1400 {

// Returns the text of a random UUID. Throws boost::uuids::entropy_error when the system has no random
// bytes.
[[nodiscard]] std::string randomFolderName();

// The folder of one update in the system's temporary directory. Constructing it creates nothing.
class tUpdateFolder {
 public:
  // Throws std::filesystem::filesystem_error ("temp_directory_path") when the system has no temporary
  // directory.
  explicit tUpdateFolder(const std::string& name);

  // Returns the path of a file of the update. A name with a drive letter or two leading separators is a
  // path of its own.
  [[nodiscard]] std::u16string pathOf(std::u16string_view fileName) const;

  // Creates the folder, with any missing parents, unless it exists. Throws
  // std::filesystem::filesystem_error ("create_directories").
  void create() const;
  // Removes the folder with all its contents, as far as the system allows. Never follows a link.
  void remove() const noexcept;

 private:
  std::u16string path_;
};

}  // namespace nQUENRA1400

#endif
