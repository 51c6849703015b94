// The results and the status of a request: the driver has replied, or the transport failed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

#include "quenra_status.h"
#include "tests/component/apalcodegen/requests.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;
using tWords = std::vector<uint64_t>;

// ---- Replies of the driver ----

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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_STREQ(status.file, "");
}

TEST_P(DriverAnswer, Error_CopiesTheValuesAndIsLocatedAtTheRequest) {
  device_.answerWith(replyWith(QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL));
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  expectCodeOfTheDriver(status, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);
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

TEST_P(DriverAnswer, ShortRecordOfEightBytes_StoresTheCodeAlone) {
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

TEST_P(DriverAnswer, EveryShorterReply_ReadsAsZerosPastItsEnd) {
  const std::vector<uint8_t> complete = replyWith(-7);
  for (size_t size = 0; size < complete.size(); ++size) {
    SCOPED_TRACE(size);
    std::vector<uint8_t> padded(complete.begin(), complete.begin() + static_cast<ptrdiff_t>(size));
    device_.answerWith(padded);
    outs_ = {};
    tStatus shortened;
    send(shortened);
    const tOuts outsOfShortened = outs_;

    padded.resize(complete.size());
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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_P(DriverAnswer, TransportWarning_CountsAsSuccess) {
  device_.answerWith(replyWith(0));
  device_.transportWill([](tStatus& transport) {
    mergeStatus(transport, QUENRA_STATUS_IO_PENDING, {"device", 1});
  });
  tStatus status;
  send(status);
  EXPECT_EQ(outs_, outsOfReply());
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Of, DriverAnswer, testing::ValuesIn(kAllRequests), nameOf);

// ---- Failures in transport ----

class TransportFailure : public EveryRequest {
 protected:
  TransportFailure() { device_.answerWith(replyWith(-7)); }

  // The device fails with ACCESS_DENIED. The words begin the extension; its other bytes are not zero.
  void failWith(tWords extension) {
    device_.transportWill([extension](tStatus& transport) {
      mergeStatus(transport, QUENRA_STATUS_ACCESS_DENIED, {"device", 110, "transport"});
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
    EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
    EXPECT_STREQ(status.component, "transport");
    EXPECT_STREQ(status.file, "device");
    EXPECT_EQ(status.line, 110u);
  }
};

TEST_P(TransportFailure, Code_ArrivesWithItsLocation) {
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

TEST_P(TransportFailure, ShortRecordOfEightBytes_StoresTheCodeAlone) {
  failWith({1, 2, 3});
  const auto memory = std::make_unique<uint64_t[]>(1);
  const uint32_t structSize = 8;
  std::memcpy(memory.get(), &structSize, sizeof structSize);
  void* volatile address = memory.get();
  send(*static_cast<tStatus*>(address));
  int32_t code = 0;
  std::memcpy(&code, static_cast<const char*>(address) + 4, sizeof code);
  EXPECT_EQ(code, QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_EQ(outs_, tOuts());
}

TEST_P(TransportFailure, ShortFormOfTheTransport_GivesItsCodeWithoutALocation) {
  device_.transportWill([](tStatus& transport) {
    mergeStatus(transport, QUENRA_STATUS_ACCESS_DENIED, {"device", 110, "transport"});
    transport.extension[0] = 1;
    transport.structSize = 207;
  });
  tStatus status;
  send(status);
  EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_STREQ(status.component, "");
  EXPECT_STREQ(status.file, "");
  EXPECT_EQ(status.line, 0u);
  EXPECT_EQ(status.extension[0], 0u);
}

TEST_P(TransportFailure, DriversCodeInTheReply_IsIgnored) {
  device_.answerWith(replyWith(-1));
  failWith({});
  tStatus status;
  send(status);
  EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
}

INSTANTIATE_TEST_SUITE_P(Of, TransportFailure, testing::ValuesIn(kAllRequests), nameOf);

}  // namespace
}  // namespace nTests
