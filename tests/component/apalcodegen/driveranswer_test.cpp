// The results and the status of a request that the driver has answered.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "tests/component/apalcodegen/requests.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

class DriverAnswer : public EveryRequest {
 protected:
  void expectCodeOfTheDriver(const tStatus& status, int32_t code) {
    EXPECT_EQ(status.code, code);
    EXPECT_STREQ(status.component, "quenra");
    EXPECT_STREQ(status.file, GetParam().file);
    EXPECT_EQ(status.line, GetParam().line);
    EXPECT_EQ(status.extension[0], 0u);
  }
};

TEST_P(DriverAnswer, Success_CopiesTheValuesAndLeavesTheStatus) {
  device_.answerWith(replyWith(0));
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  EXPECT_EQ(status.code, 0);
  EXPECT_STREQ(status.file, "");
}

TEST_P(DriverAnswer, Error_CopiesTheValuesAndIsLocatedAtTheRequest) {
  device_.answerWith(replyWith(-240563));
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  expectCodeOfTheDriver(status, -240563);
}

TEST_P(DriverAnswer, Warning_CopiesTheValuesAndIsLocatedAtTheRequest) {
  device_.answerWith(replyWith(1));
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  expectCodeOfTheDriver(status, 1);
}

TEST_P(DriverAnswer, WarningOnAWarning_KeepsTheCallers) {
  device_.answerWith(replyWith(7));
  tStatus status;
  mergeStatus(status, 5, {"caller", 1});
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  EXPECT_EQ(status.code, 5);
  EXPECT_STREQ(status.file, "caller");
}

TEST_P(DriverAnswer, ErrorOnAWarning_ReplacesIt) {
  device_.answerWith(replyWith(-7));
  tStatus status;
  mergeStatus(status, 5, {"caller", 1});
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  expectCodeOfTheDriver(status, -7);
}

TEST_P(DriverAnswer, ShortRecordOfEightBytes_TakesTheCodeAlone) {
  device_.answerWith(replyWith(-7));
  const auto memory = std::make_unique<uint64_t[]>(1);
  const uint32_t structSize = 8;
  std::memcpy(memory.get(), &structSize, sizeof structSize);
  void* volatile address = memory.get();
  send(*static_cast<tStatus*>(address));
  int32_t code = 0;
  std::memcpy(&code, static_cast<const char*>(address) + 4, sizeof code);
  EXPECT_EQ(code, -7);
  EXPECT_EQ(outs_, outsOfReply());
}

TEST_P(DriverAnswer, EveryShorterReply_ReadsAsZerosBehindItsEnd) {
  const std::vector<uint8_t> whole = replyWith(-7);
  for (size_t size = 0; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    std::vector<uint8_t> padded(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    device_.answerWith(padded);
    outs_ = {};
    tStatus shortened;
    send(shortened);
    const tOuts outsOfShortened = outs_;

    padded.resize(whole.size());
    device_.answerWith(padded);
    outs_ = {};
    tStatus zeroed;
    send(zeroed);
    EXPECT_EQ(outsOfShortened, outs_);
    EXPECT_EQ(shortened.code, zeroed.code);
  }
}

TEST_P(DriverAnswer, NoReplyAtAll_ReadsAsZeros) {
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfZeros());
  EXPECT_EQ(status.code, 0);
}

TEST_P(DriverAnswer, TransportWarning_CountsAsSuccess) {
  device_.answerWith(replyWith(0));
  device_.transportWill([](tStatus& transport) { mergeStatus(transport, 52011, {"device", 1}); });
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  EXPECT_EQ(status.code, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, DriverAnswer, testing::ValuesIn(kAllRequests), nameOf);

}  // namespace
}  // namespace nTests
