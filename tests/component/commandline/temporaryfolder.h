#ifndef TESTS_COMPONENT_COMMANDLINE_TEMPORARYFOLDER_H
#define TESTS_COMPONENT_COMMANDLINE_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>
#include <string_view>

namespace nTests {

// An empty folder; the destructor removes it with its contents.
class tTemporaryFolder {
 public:
  tTemporaryFolder();
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;
  ~tTemporaryFolder();

  // The path of a file in the folder, as a user types it.
  [[nodiscard]] std::string path(std::string_view name) const;
  // The same; also writes the file.
  std::string file(std::string_view name, std::string_view content) const;
  // The content of a file; "(none)" if it does not exist.
  [[nodiscard]] std::string content(std::string_view name) const;
  [[nodiscard]] size_t files() const;

 private:
  std::filesystem::path folder_;
};

}  // namespace nTests

#endif
