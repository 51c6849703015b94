#include "tests/builders/ttemporaryfolder.h"

#include <random>
#include <string>

namespace nTests {

tTemporaryFolder::tTemporaryFolder() {
  std::random_device chance;
  do {
    path_ = std::filesystem::temp_directory_path() / ("quenra test " + std::to_string(chance()));
  } while (!std::filesystem::create_directories(path_));
}

tTemporaryFolder::~tTemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void tTemporaryFolder::empty() const {
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

}  // namespace nTests
