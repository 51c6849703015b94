#include "simulator/scenario/wine.h"

#include <gtest/gtest.h>

#include <cstring>

namespace nTests {
namespace {

using nSimulator::answerUnderWine;
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

TEST(AnswerUnderWine, OutsideWine_IsTheRefusalAndNothingIsDone) {
  bool done = false;
  EXPECT_EQ(answerUnderWine(false, 50,
                            [&done] {
                              done = true;
                              return 0;
                            }),
            50);
  EXPECT_FALSE(done);
}

TEST(AnswerUnderWine, UnderWine_IsThatOfTheAction) {
  EXPECT_EQ(answerUnderWine(true, 50, [] { return 7; }), 7);
}

}  // namespace
}  // namespace nTests
