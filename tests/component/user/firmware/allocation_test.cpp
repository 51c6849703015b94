// Each allocation of a parse refused in turn.
#include "tests/component/user/firmware/parsertest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using ParserWithoutMemory = ParserTest;

TEST_F(ParserWithoutMemory, RefusedAtAnyTime_IsReportedAndKeepsWhatIsThere) {
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
    EXPECT_EQ(status.code, -26933) << "allocation " << nth;
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

}  // namespace
}  // namespace nTests
