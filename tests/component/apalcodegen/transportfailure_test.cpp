// Requests that fail in transport: they do not reach the driver, or the answer does not return.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

#include "tests/component/apalcodegen/requests.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

using tWords = std::vector<uint64_t>;

class TransportFailure : public EveryRequest {
 protected:
  TransportFailure() { device_.answerWith(replyWith(-7)); }

  // The device fails with -52009. The words begin the extension; its other bytes are not zero.
  void failWith(tWords extension) {
    device_.transportWill([extension](tStatus& transport) {
      mergeStatus(transport, -52009, "transport", "device", 110);
      std::fill(std::begin(transport.extension), std::end(transport.extension), 0xDD);
      std::copy(extension.begin(), extension.end(), transport.extension);
      if (extension.size() < std::size(transport.extension)) {
        transport.extension[extension.size()] = 0;
      }
    });
  }
  static tWords wordsOf(const tStatus& status) {
    return {std::begin(status.extension), std::end(status.extension)};
  }
  static void expectTransportFailure(const tStatus& status) {
    EXPECT_EQ(status.code, -52009);
    EXPECT_STREQ(status.component, "transport");
    EXPECT_STREQ(status.file, "device");
    EXPECT_EQ(status.line, 110u);
  }
};

TEST_P(TransportFailure, Code_ArrivesWithItsPlace) {
  failWith({});
  tStatus status;
  send(status);
  expectTransportFailure(status);
}

TEST_P(TransportFailure, Outs_StayAsTheyWere) {
  failWith({});
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, tOuts());
}

TEST_P(TransportFailure, OnAWarning_ReplacesIt) {
  failWith({});
  tStatus status;
  mergeStatus(status, 5, {"caller", 1});
  send(status);
  expectTransportFailure(status);
  EXPECT_EQ(outs_, tOuts());
}

TEST_P(TransportFailure, ExtensionOfNoWords_CopiesTheEndAlone) {
  failWith({});
  tStatus status;
  std::fill(std::begin(status.extension), std::end(status.extension), 0xCC);
  send(status);
  EXPECT_EQ(wordsOf(status), (tWords{0, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC}));
}

TEST_P(TransportFailure, ExtensionOfThreeWords_CopiesThemAndTheEnd) {
  failWith({0x1111111122222222, 2, 3});
  tStatus status;
  std::fill(std::begin(status.extension), std::end(status.extension), 0xCC);
  send(status);
  EXPECT_EQ(wordsOf(status),
            (tWords{0x1111111122222222, 2, 3, 0, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC}));
}

TEST_P(TransportFailure, ExtensionOfTenWords_CopiesAllAndNoMore) {
  failWith({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  tStatus status;
  send(status);
  expectTransportFailure(status);
  EXPECT_EQ(wordsOf(status), (tWords{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_P(TransportFailure, ShortRecordOfEightBytes_TakesTheCodeAlone) {
  failWith({1, 2, 3});
  const auto memory = std::make_unique<uint64_t[]>(1);
  const uint32_t structSize = 8;
  std::memcpy(memory.get(), &structSize, sizeof structSize);
  void* volatile address = memory.get();
  send(*static_cast<tStatus*>(address));
  int32_t code = 0;
  std::memcpy(&code, static_cast<const char*>(address) + 4, sizeof code);
  EXPECT_EQ(code, -52009);
  EXPECT_EQ(outs_, tOuts());
}

TEST_P(TransportFailure, ShortFormOfTheTransport_GivesItsCodeWithoutAPlace) {
  device_.transportWill([](tStatus& transport) {
    mergeStatus(transport, -52009, "transport", "device", 110);
    transport.extension[0] = 1;
    transport.structSize = 207;
  });
  tStatus status;
  send(status);
  EXPECT_EQ(status.code, -52009);
  EXPECT_STREQ(status.component, "");
  EXPECT_STREQ(status.file, "");
  EXPECT_EQ(status.line, 0u);
  EXPECT_EQ(status.extension[0], 0u);
}

TEST_P(TransportFailure, DriversCodeInTheReply_IsNotLookedAt) {
  device_.answerWith(replyWith(-1));
  failWith({});
  tStatus status;
  send(status);
  EXPECT_EQ(status.code, -52009);
}

INSTANTIATE_TEST_SUITE_P(Of, TransportFailure, testing::ValuesIn(kAllRequests), nameOf);

}  // namespace
}  // namespace nTests
