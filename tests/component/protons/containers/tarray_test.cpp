#include "zoapal/protons/containers/tarray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#ifndef _WIN32
#include "tests/fakewindows/debugger.h"
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

TEST(Array, DefaultCapacity_Holds256Elements) {
  EXPECT_EQ(tArray<int>::kMaxSize, 256u);
  tArray<int> array;
  array.resize(256);
  EXPECT_EQ(array.size(), 256u);
}

TEST(Array, Resized_ZeroFillsPastItsElements) {
  tNumbers array;
  array.resize(2);
  array.data()[0] = 7;
  array.data()[1] = 8;
  array.resize(3);
  EXPECT_EQ(elementsOf(array), (std::vector{7, 8, 0}));
}

TEST(Array, ShrunkAndGrown_HasZeroedElements) {
  tNumbers array;
  array.resize(2);
  array.data()[1] = 8;
  array.resize(1);
  array.resize(2);
  EXPECT_EQ(elementsOf(array), (std::vector{0, 0}));
}

TEST(Array, Assigned_HasTheNewElementsOnly) {
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

TEST(Array, FullOfCharacters_IsNulTerminated) {
  const std::string name(256, 'n');
  tArray<char> text;
  text.assign(name.data(), name.size());
  EXPECT_STREQ(text.data(), name.c_str());
  EXPECT_EQ(sizeof(tArray<char>), 264u + sizeof(size_t));
}

// On Windows the tests of assertions start a process that fails; here one is forked.
#ifndef _WIN32
constexpr const char* kLine = "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$";

TEST(Array, ResizedPastItsCapacity_EndsTheProcess) {
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        tArray<char> array;
        array.resize(257);
      },
      testing::ExitedWithCode(nFakeWindows::kAssertionExitCode), kLine);
}

TEST(Array, AssignedMoreThanItsCapacity_EndsTheProcess) {
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        const std::string name(257, 'n');
        tArray<char> array;
        array.assign(name.data(), name.size());
      },
      testing::ExitedWithCode(nFakeWindows::kAssertionExitCode), kLine);
}
#endif

}  // namespace
}  // namespace nTests
