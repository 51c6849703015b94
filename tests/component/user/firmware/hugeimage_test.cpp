// Images larger than 4 GiB, in reserved memory of which most pages are never touched.
#include <sys/mman.h>

#include <cstring>

#include "tests/component/user/firmware/parsertest.h"

namespace nTests {
namespace {

constexpr size_t kFourGibibytes = size_t{1} << 32;

class HugeImage : public ParserTest {
 protected:
  // Parses the text followed by NULs up to `size`.
  tFailure parseWithSize(const std::string& text, size_t size) {
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) {
      ADD_FAILURE() << "no address space";
      return {};
    }
    std::memcpy(memory, text.data(), text.size());
    zoerr::tOwnedStatus status;
    nQUENRA1400::tFirmwareImageParser().Parse(records, memory, size, status);
    munmap(memory, size);
    return {status.code, lineOf(status)};
  }
};

TEST_F(HugeImage, LastPayload_EndsWhereTheLower32BitsOfTheSizeSay) {
  const std::string text = tFirmwareSection("MARTEN").text();
  EXPECT_EQ(parseWithSize(text, kFourGibibytes + text.size()), kSuccess);
  EXPECT_EQ(data(0), tFirmwareSection("MARTEN").data());
  EXPECT_EQ(parseWithSize(text, kFourGibibytes + text.size() - 40),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 241}));
}

}  // namespace
}  // namespace nTests
