#include "simulator/quenra-sim/installation/steps.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace nTests {
namespace {

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
