#include "tools/quenra/reading/tcontroller.h"

#include <gtest/gtest.h>

#include "tests/component/commandline/tscriptedlibrary.h"

namespace nTests {
namespace {

using namespace nCommandLine;

constexpr uint32_t kText = 0x10000100;
constexpr uint32_t kNumber = 0x20000600;

class ReadAttribute : public testing::Test {
 protected:
  tReading read(uint32_t attribute, uint8_t instance = 0,
                tInterface which = tInterface::byDefault) {
    const tController controller(library_);
    return controller.read({attribute, instance, which});
  }
  std::string readText() { return std::get<std::string>(read(kText).value); }

  tScriptedLibrary library_;
};

TEST_F(ReadAttribute, InstanceAndInterface_ArePartOfTheId) {
  library_.number(kNumber | 0x00200000 | 3, 77);
  EXPECT_EQ(std::get<uint32_t>(read(kNumber, 3, tInterface::marten).value), 77u);
}

TEST_F(ReadAttribute, LongText_IsReadWhole) {
  for (const size_t length : {255u, 256u, 257u, 5000u}) {
    library_.text(kText, std::string(length, 'x'));
    EXPECT_EQ(readText(), std::string(length, 'x'));
  }
}

TEST_F(ReadAttribute, TextThatGrowsBetweenTheCalls_IsReadWhole) {
  library_.text(kText, std::string(300, 'a'));
  int calls = 0;
  library_.beforeText([&] {
    if (++calls == 2) {
      library_.text(kText, std::string(600, 'b'));
    }
  });
  EXPECT_EQ(readText(), std::string(600, 'b'));
}

TEST_F(ReadAttribute, TextThatGrowsForEver_FailsInTheEnd) {
  size_t calls = 0;
  library_.beforeText([&] { library_.text(kText, std::string(300 * ++calls, 'a')); });
  EXPECT_EQ(read(kText).code, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_LT(calls, 20u);
}

TEST_F(ReadAttribute, TooSmallWithoutALargerSize_Fails) {
  library_.code(kText, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(read(kText).code, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(library_.reads.size(), 1u);
}

TEST_F(ReadAttribute, UntouchedBuffer_ReadsAsAnEmptyText) {
  library_.code(kText, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(readText(), "");
}

TEST_F(ReadAttribute, StateFollowsTheCode) {
  const std::pair<int32_t, tReadingState> kExpectations[] = {
      {QUENRA_STATUS_SUCCESS, tReadingState::value},
      {QUENRA_STATUS_IO_PENDING, tReadingState::value},
      {QUENRA_STATUS_NOT_SUPPORTED, tReadingState::notSupported},
      {QUENRA_STATUS_NO_CONTROLLER, tReadingState::notAvailable},
      {QUENRA_STATUS_TIME_OUT, tReadingState::failed},
      {-1, tReadingState::failed}};
  for (const auto& [code, state] : kExpectations) {
    library_.number(kNumber, 1, code);
    EXPECT_EQ(read(kNumber).state(), state) << code;
  }
}

TEST_F(ReadAttribute, ControllerThatWasNotOpened_IsNotClosed) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  { const tController controller(library_); }
  EXPECT_EQ(library_.closes, 0);
}

}  // namespace
}  // namespace nTests
