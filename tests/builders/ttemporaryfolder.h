// A folder that no other test has, and that is gone afterwards.
#ifndef TESTS_BUILDERS_TTEMPORARYFOLDER_H
#define TESTS_BUILDERS_TTEMPORARYFOLDER_H

#include <filesystem>

namespace nTests {

// Below the folder for temporary files as it is at construction. Tests run side by side, also those
// of one program: a fixed name would be shared. There is a space in its path.
class tTemporaryFolder {
 public:
  tTemporaryFolder();
  ~tTemporaryFolder();
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;

  const std::filesystem::path& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace nTests

#endif
