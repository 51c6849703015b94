#ifndef TESTS_COMPONENT_COMMANDLINE_TESTFILES_H
#define TESTS_COMPONENT_COMMANDLINE_TESTFILES_H

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/builders/ttemporaryfolder.h"

namespace nTests {

// The files of a test, in a temporary folder of their own.
class tTestFiles {
 public:
  // The path of a file in the folder, as a user types it.
  [[nodiscard]] std::string path(std::string_view name) const;
  // The same; also writes the file.
  std::string file(std::string_view name, std::string_view content) const;
  // The content of a file; "(none)" if it does not exist.
  [[nodiscard]] std::string content(std::string_view name) const;
  // The number of files.
  [[nodiscard]] size_t files() const;

 private:
  [[nodiscard]] std::filesystem::path pathOf(std::string_view name) const;

  tTemporaryFolder folder_;
};

}  // namespace nTests

#endif
