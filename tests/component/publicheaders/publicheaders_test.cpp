#include <gtest/gtest.h>

#include <set>
#include <span>
#include <string>

#include "quenra.h"
#include "quenra_routing.h"
#include "tests/component/publicheaders/headersinc.h"

namespace nTests {
namespace {

TEST(PublicHeaders, VersionAsText_HasThePartsOfTheNumber) {
  EXPECT_EQ(std::string(QUENRA_VERSION), std::to_string(QUENRA_VERSION_MAJOR) + "." +
                                             std::to_string(QUENRA_VERSION_MINOR) + "." +
                                             std::to_string(QUENRA_VERSION_PATCH));
  EXPECT_EQ(QUENRA_VERSION_NUMBER / 10000, QUENRA_VERSION_MAJOR);
  EXPECT_EQ(QUENRA_VERSION_NUMBER / 100 % 100, QUENRA_VERSION_MINOR);
  EXPECT_EQ(QUENRA_VERSION_NUMBER % 100, QUENRA_VERSION_PATCH);
  EXPECT_STREQ(kVersionOfC, QUENRA_VERSION);
}

TEST(PublicHeaders, AttributeAt_ReplacesTheInstance) {
  EXPECT_EQ(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 0), 0x2000D000u);
  EXPECT_EQ(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 255), 0x2000D0FFu);
  EXPECT_EQ(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 256), 0x2000D000u);
  EXPECT_EQ(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE + 7, 2), 0x2000D002u);
  EXPECT_EQ(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE | QUENRA_SELECTOR_MARTEN, 3),
            0x2020D003u);
}

TEST(PublicHeaders, MasksOfAnId_DoNotOverlap) {
  constexpr uint32_t kMasks[] = {QUENRA_ATTRIBUTE_TYPE_MASK, QUENRA_ATTRIBUTE_PRIVATE_MASK,
                                 QUENRA_ATTRIBUTE_SELECTOR_MASK, QUENRA_ATTRIBUTE_NUMBER_MASK,
                                 QUENRA_ATTRIBUTE_INSTANCE_MASK};
  uint32_t covered = 0;
  for (const uint32_t mask : kMasks) {
    EXPECT_EQ(covered & mask, 0u) << std::hex << mask;
    covered |= mask;
  }
  EXPECT_EQ(covered, 0xF8FFFFFFu);  // bits 24 to 26 are unused
}

TEST(PublicHeaders, Inventory_HasEveryAttributeOnce) {
  std::set<uint32_t> ids;
  std::set<std::string> names;
  for (const tInventoryEntry& entry : std::span(kInventoryOfC, kInventorySizeOfC)) {
    EXPECT_TRUE(ids.insert(entry.id).second) << entry.name;
    EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
  }
  EXPECT_EQ(ids.size(), 50u);
}

TEST(PublicHeaders, Inventories_HaveIdsOfTheirType) {
#define EXPECT_TEXT(id, name) \
  EXPECT_EQ((id)&QUENRA_ATTRIBUTE_TYPE_MASK, QUENRA_ATTRIBUTE_TYPE_TEXT) << (name);
#define EXPECT_UNSIGNED(id, name) \
  EXPECT_EQ((id)&QUENRA_ATTRIBUTE_TYPE_MASK, QUENRA_ATTRIBUTE_TYPE_UNSIGNED) << (name);
  QUENRA_FOR_EACH_TEXT_ATTRIBUTE(EXPECT_TEXT)
  QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(EXPECT_UNSIGNED)
#undef EXPECT_TEXT
#undef EXPECT_UNSIGNED
}

}  // namespace
}  // namespace nTests
