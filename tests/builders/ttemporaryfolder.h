// A folder unique to one object, which removes it.
#ifndef TESTS_BUILDERS_TTEMPORARYFOLDER_H
#define TESTS_BUILDERS_TTEMPORARYFOLDER_H

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace nTests {

// Created below the current folder for temporary files. The name is unique because tests run in
// parallel, also those of one program. The path contains a space.
class tTemporaryFolder {
 public:
  tTemporaryFolder() {
    std::random_device chance;
    do {
      path_ = std::filesystem::temp_directory_path() / ("quenra test " + std::to_string(chance()));
    } while (!std::filesystem::create_directories(path_));
  }
  ~tTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  // Removes the contents.
  void empty() const {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace nTests

#endif
