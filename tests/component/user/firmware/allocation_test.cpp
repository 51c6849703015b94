// The memory of a parse: each allocation fails in turn; expensive images stay within a bound.
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/user/firmware/parsertest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using ParserWithoutMemory = ParserTest;

TEST_F(ParserWithoutMemory, AllocationThatFails_IsReportedAndKeepsEarlierRecords) {
  const std::string longText(100, 'v');
  const std::string image = firmwareImage(
      {tFirmwareSection("MARTEN").version(longText), tFirmwareSection("BIOS").version(longText),
       tFirmwareSection::capsule(longText + ".inf").version(longText)});
  unsigned refused = 0;
  for (unsigned nth = 1;; ++nth) {
    zoerr::tOwnedStatus status;
    unsigned allocations = 0;
    {
      const nFakeWindows::tAllocationPlan plan(nth);
      nQUENRA1400::tFirmwareImageParser().Parse(records, image.data(), image.size(), status);
      allocations = plan.count();
    }
    if (allocations < nth) {
      EXPECT_EQ(status.code, 0);
      EXPECT_EQ(records.size(), 3u);
      break;
    }
    ++refused;
    EXPECT_EQ(status.code, QUENRA_STATUS_OUT_OF_MEMORY) << "allocation " << nth;
    EXPECT_EQ(lineOf(status), 214u) << "allocation " << nth;
    EXPECT_LT(records.size(), 3u) << "allocation " << nth;
    for (const auto& record : records) {
      EXPECT_NE(record.data, nullptr);
    }
    freePayloads(records);
    records.clear();
  }
  EXPECT_GE(refused, 6u) << "three payloads and their records";
}

class ParserMemory : public ParserTest, public testing::WithParamInterface<tExpensiveImage> {};

TEST_P(ParserMemory, BytesInUse_AreProportionalToTheImage) {
  for (const size_t sections : {100u, 200u, 400u}) {
    const std::string image = GetParam().build(sections);
    zoerr::tOwnedStatus status;
    const size_t before = nFakeWindows::bytesInUse();
    {
      const nFakeWindows::tAllocationPlan plan(0);
      nQUENRA1400::tFirmwareImageParser().Parse(records, image.data(), image.size(), status);
    }
    EXPECT_EQ(status.code, 0);
    EXPECT_GT(records.size(), sections);
    EXPECT_LE(nFakeWindows::bytesInUse() - before, 5 * image.size()) << sections << " sections";
    freePayloads(records);
    records = {};
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ParserMemory,
                         testing::ValuesIn(expensiveImages().begin(), expensiveImages().end()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace nTests
