// The parts of the installation that need no Windows: the restriction to Wine, and the steps.
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "simulator/quenra-sim/installation/steps.h"
#include "simulator/scenario/wine.h"

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

TEST(AnswerUnderWine, OutsideWine_ReturnsTheRefusalWithoutActing) {
  bool done = false;
  EXPECT_EQ(answerUnderWine(false, 50,
                            [&done] {
                              done = true;
                              return 0;
                            }),
            50);
  EXPECT_FALSE(done);
}

TEST(AnswerUnderWine, UnderWine_ReturnsTheResultOfTheAction) {
  EXPECT_EQ(answerUnderWine(true, 50, [] { return 7; }), 7);
}

// ---- Steps ----

using nSimulator::runEveryStep;

TEST(Steps, EveryStep_RunsInOrder) {
  std::string order;
  runEveryStep({[&] { order += 'a'; }, [&] { order += 'b'; }, [&] { order += 'c'; }});
  EXPECT_EQ(order, "abc");
}

TEST(Steps, FailedSteps_DoNotStopTheOthersAndAreAllReported) {
  std::string order;
  try {
    runEveryStep({[&] {
                    order += 'a';
                    throw std::runtime_error("first");
                  },
                  [&] { order += 'b'; },
                  [&] {
                    order += 'c';
                    throw std::runtime_error("third");
                  }});
    ADD_FAILURE() << "no failure was reported";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "first; third");
  }
  EXPECT_EQ(order, "abc");
}

}  // namespace
}  // namespace nTests
