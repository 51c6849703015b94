#include "tests/component/commandline/testfiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace nTests {

std::string tTestFiles::path(std::string_view name) const {
  const std::u8string path = pathOf(name).generic_u8string();
  return {path.begin(), path.end()};
}

std::string tTestFiles::file(std::string_view name, std::string_view content) const {
  std::ofstream stream(pathOf(name), std::ios::binary);
  stream << content;
  EXPECT_TRUE(stream.good());
  return path(name);
}

std::string tTestFiles::content(std::string_view name) const {
  std::ifstream stream(pathOf(name), std::ios::binary);
  return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "(none)";
}

size_t tTestFiles::files() const {
  const std::filesystem::directory_iterator files(folder_.path());
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

std::filesystem::path tTestFiles::pathOf(std::string_view name) const {
  return folder_.path() / std::u8string(name.begin(), name.end());
}

}  // namespace nTests
