#include "tools/quenra/reading/readingoutput.h"

#include <gtest/gtest.h>

#include "tools/quenra/tables/attributetable.h"

namespace nTests {
namespace {

using namespace nCommandLine;

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

TEST(ValueText, NumbersThatStandForSomething_AreShownWithIt) {
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

TEST(ValueText, UnitOfAMemorySize_IsNotGivenWhereItIsAnother) {
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

TEST(ValueText, AttributeOutsideTheCatalogue_IsShownPlainly) {
  EXPECT_EQ(shownValue(nullptr, 32u), "32");
  EXPECT_EQ(unitOf(nullptr, 32u), "");
}

}  // namespace
}  // namespace nTests
