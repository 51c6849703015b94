#ifndef SOURCE_USER_UPDATE_TUPDATEFOLDER_H
#define SOURCE_USER_UPDATE_TUPDATEFOLDER_H

#include <string>
#include <string_view>

namespace nQUENRA1400 {

// The folder of one update in the system's temporary directory, under a name that nothing else has.
// Its name is all there is of it at first.
class tUpdateFolder {
 public:
  // Throws boost::uuids::entropy_error when the system gives no random bytes, and
  // std::filesystem::filesystem_error ("temp_directory_path") when it gives no directory.
  tUpdateFolder();

  // Where a file of the update goes. A name with a drive letter, or of another machine, stands for
  // itself.
  [[nodiscard]] std::u16string pathOf(std::u16string_view fileName) const;

  // Makes it, with any missing parents, unless it is there. Throws std::filesystem::filesystem_error
  // ("create_directories").
  void create() const;
  // Removes it with all its contents, if it is there; failure is nobody's concern.
  void remove() const noexcept;

 private:
  std::u16string path_;
};

}  // namespace nQUENRA1400

#endif
