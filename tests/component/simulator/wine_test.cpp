#include "simulator/environment/wine.h"

#include <gtest/gtest.h>

#include <cstring>

namespace nTests {
namespace {

using nSimulator::isWine;

TEST(IsWine, LibraryWithTheExportOfWine_IsRecognised) {
  const auto find = [](const char* library, const char* function) -> const void* {
    const bool matches =
        std::strcmp(library, "ntdll.dll") == 0 && std::strcmp(function, "wine_get_version") == 0;
    return matches ? library : nullptr;
  };
  EXPECT_TRUE(isWine(find));
}

TEST(IsWine, LibraryWithoutTheExport_IsNotWine) {
  EXPECT_FALSE(isWine([](const char*, const char*) -> const void* { return nullptr; }));
}

}  // namespace
}  // namespace nTests
