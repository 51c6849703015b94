#ifndef TESTS_COMPONENT_COMMANDLINE_TEMPORARYFOLDER_H
#define TESTS_COMPONENT_COMMANDLINE_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>
#include <string_view>

namespace nTests {

// An empty folder, which goes with everything in it.
class tTemporaryFolder {
 public:
  tTemporaryFolder();
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;
  ~tTemporaryFolder();

  // The path of a file in it, as it is typed.
  [[nodiscard]] std::string path(std::string_view name) const;
  // ... which is written.
  std::string file(std::string_view name, std::string_view content) const;
  // What is in a file; "(none)" when there is no such file.
  [[nodiscard]] std::string content(std::string_view name) const;
  [[nodiscard]] size_t files() const;

 private:
  std::filesystem::path folder_;
};

}  // namespace nTests

#endif
