#include <gtest/gtest.h>

#include "tests/component/commandline/tscriptedlibrary.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/tables/attributetable.h"

namespace nTests {
namespace {

using namespace nCommandLine;

// ---- Reading an attribute ----

constexpr uint32_t kText = QUENRA_ATTRIBUTE_PRODUCT_NAME;
constexpr uint32_t kNumber = QUENRA_ATTRIBUTE_PLATFORM_CODE;

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
  library_.number(kNumber | QUENRA_SELECTOR_MARTEN | 3, 77);
  EXPECT_EQ(std::get<uint32_t>(read(kNumber, 3, tInterface::marten).value), 77u);
}

TEST_F(ReadAttribute, LongText_IsReadCompletely) {
  for (const size_t length : {255u, 256u, 257u, 5000u}) {
    library_.text(kText, std::string(length, 'x'));
    EXPECT_EQ(readText(), std::string(length, 'x'));
  }
}

TEST_F(ReadAttribute, TextThatGrowsBetweenTheCalls_IsReadCompletely) {
  library_.text(kText, std::string(300, 'a'));
  int calls = 0;
  library_.beforeText([&] {
    if (++calls == 2) {
      library_.text(kText, std::string(600, 'b'));
    }
  });
  EXPECT_EQ(readText(), std::string(600, 'b'));
}

TEST_F(ReadAttribute, EndlesslyGrowingText_Fails) {
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

// ---- Values as text ----

std::string shown(std::string_view name, tAttributeValue value) {
  return shownValue(findAttribute(name), value);
}
std::string_view unit(std::string_view name, uint32_t value) {
  return unitOf(findAttribute(name), value);
}

TEST(ValueText, NumbersAreShownWithTheirUnits) {
  EXPECT_EQ(shown("memory-speed", 3200u), "3200 MT/s");
  EXPECT_EQ(shown("processor-maximum-speed", 4700u), "4700 MHz");
  EXPECT_EQ(shown("slot-count", 4u), "4");
}

TEST(ValueText, CodesAreShownInHexadecimal) {
  EXPECT_EQ(shown("platform-revision", 0x20u), "0x20");
}

TEST(ValueText, NamedNumbers_AreShownWithTheirNames) {
  EXPECT_EQ(shown("link-kind", 3u), "3 (Thunderbolt)");
  EXPECT_EQ(shown("link-kind", 0xFFFFFFFFu), "4294967295 (another)");
  EXPECT_EQ(shown("link-kind", 9u), "9");
  EXPECT_EQ(shown("memory-type", 0x1Au), "26 (DDR4)");
}

TEST(ValueText, MemorySize_IsInMebibytesOrKibibytes) {
  EXPECT_EQ(shown("memory-size", 16384u), "16384 MiB");
  EXPECT_EQ(shown("memory-size", 0x8000u + 512), "512 KiB");
  EXPECT_EQ(shown("memory-size", 0x7FFFu), "32 GiB or more");
  EXPECT_EQ(shown("memory-size", 0xFFFFu), "unknown");
}

TEST(ValueText, MemorySizeInAnotherUnit_HasNoUnit) {
  EXPECT_EQ(unit("memory-size", 16384), "MiB");
  EXPECT_EQ(unit("memory-size", 0x8200), "");
  EXPECT_EQ(unit("memory-size", 0x7FFF), "");
  EXPECT_EQ(unit("memory-speed", 0x8200), "MT/s");
}

TEST(ValueText, InterfaceSet_IsSpeltOut) {
  EXPECT_EQ(shown("interfaces-present", 0x300000u), "0x300000 (controller, Marten)");
  EXPECT_EQ(shown("interfaces-present", 0x100000u), "0x100000 (controller)");
  EXPECT_EQ(shown("interfaces-present", 0u), "0x0");
}

TEST(ValueText, PlainValue_IsTheNumberOrTheTextAlone) {
  EXPECT_EQ(plainValue(0x20u), "32");
  EXPECT_EQ(plainValue(std::string("qctl")), "qctl");
  EXPECT_EQ(plainValue(std::string("a\x1B[0m")), "a\\x1B[0m");
}

TEST(ValueText, AttributeOutsideTheTable_IsShownPlainly) {
  EXPECT_EQ(shownValue(nullptr, 32u), "32");
  EXPECT_EQ(unitOf(nullptr, 32u), "");
}

}  // namespace
}  // namespace nTests
