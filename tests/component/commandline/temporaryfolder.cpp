#include "tests/component/commandline/temporaryfolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

namespace nTests {

tTemporaryFolder::tTemporaryFolder()
    : folder_(std::filesystem::temp_directory_path() /
              ("quenra-" + std::to_string(std::random_device()()))) {
  EXPECT_TRUE(std::filesystem::create_directory(folder_));
}

tTemporaryFolder::~tTemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string tTemporaryFolder::path(std::string_view name) const {
  const std::u8string path = (folder_ / std::u8string(name.begin(), name.end())).generic_u8string();
  return {path.begin(), path.end()};
}

std::string tTemporaryFolder::file(std::string_view name, std::string_view content) const {
  std::ofstream stream(folder_ / std::u8string(name.begin(), name.end()), std::ios::binary);
  stream << content;
  EXPECT_TRUE(stream.good());
  return path(name);
}

std::string tTemporaryFolder::content(std::string_view name) const {
  std::ifstream stream(folder_ / std::u8string(name.begin(), name.end()), std::ios::binary);
  return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "(none)";
}

size_t tTemporaryFolder::files() const {
  const std::filesystem::directory_iterator files(folder_);
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

}  // namespace nTests
