// A folder unique to one object, which removes it.
#ifndef TESTS_BUILDERS_TTEMPORARYFOLDER_H
#define TESTS_BUILDERS_TTEMPORARYFOLDER_H

#include <filesystem>

namespace nTests {

// Created below the current folder for temporary files. The name is unique because tests run in
// parallel, also those of one program. The path contains a space.
class tTemporaryFolder {
 public:
  tTemporaryFolder();
  ~tTemporaryFolder();
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  // Removes the contents.
  void empty() const;

 private:
  std::filesystem::path path_;
};

}  // namespace nTests

#endif
