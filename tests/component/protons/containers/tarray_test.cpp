#include "zoapal/protons/containers/tarray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#ifndef _WIN32
#include <csignal>

#include "tests/fakewindows/debuggeroutput.h"
#endif

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::tArray;
using tNumbers = tArray<int, 4>;

std::vector<int> elementsOf(const tNumbers& array) {
  return {array.begin(), array.end()};
}

TEST(Array, Initially_IsEmpty) {
  const tNumbers array;
  EXPECT_TRUE(array.isEmpty());
  EXPECT_EQ(array.size(), 0u);
  EXPECT_EQ(array.begin(), array.end());
}

TEST(Array, OfNoStatedCapacity_Holds256Elements) {
  EXPECT_EQ(tArray<int>::kMaxSize, 256u);
  tArray<int> array;
  array.resize(256);
  EXPECT_EQ(array.size(), 256u);
}

TEST(Array, Resized_HasZerosBehindWhatItHad) {
  tNumbers array;
  array.resize(2);
  array.data()[0] = 7;
  array.data()[1] = 8;
  array.resize(3);
  EXPECT_EQ(elementsOf(array), (std::vector{7, 8, 0}));
}

TEST(Array, ShrunkAndGrown_HasForgottenWhatItHad) {
  tNumbers array;
  array.resize(2);
  array.data()[1] = 8;
  array.resize(1);
  array.resize(2);
  EXPECT_EQ(elementsOf(array), (std::vector{0, 0}));
}

TEST(Array, Assigned_HasTheElementsAndNoOther) {
  tNumbers array;
  const std::vector<int> four{1, 2, 3, 4};
  array.assign(four.data(), four.size());
  EXPECT_EQ(elementsOf(array), four);
  array.assign(four.data() + 2, 1);
  EXPECT_EQ(elementsOf(array), (std::vector{3}));
  EXPECT_EQ(array.data()[1], 0);
  array.assign(nullptr, 0);
  EXPECT_TRUE(array.isEmpty());
}

TEST(Array, FullOfCharacters_IsATextWithItsNul) {
  const std::string name(256, 'n');
  tArray<char> text;
  text.assign(name.data(), name.size());
  EXPECT_STREQ(text.data(), name.c_str());
  EXPECT_EQ(sizeof(tArray<char>), 264u + sizeof(size_t));
}

// Under Windows the assertion's own tests start a process that fails; here one is forked.
#ifndef _WIN32
constexpr const char* kLine = "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$";

TEST(Array, AskedForMoreThanItHolds_StopsTheProcess) {
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        tArray<char> array;
        array.resize(257);
      },
      testing::KilledBySignal(SIGTRAP), kLine);
}

TEST(Array, AssignedMoreThanItHolds_StopsTheProcess) {
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        const std::string name(257, 'n');
        tArray<char> array;
        array.assign(name.data(), name.size());
      },
      testing::KilledBySignal(SIGTRAP), kLine);
}
#endif

}  // namespace
}  // namespace nTests
