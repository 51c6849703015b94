#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "tests/component/capture/recordedmachine.h"
#include "tools/capture/capturefile.h"

namespace nTests {
namespace {

using nCapture::captureText;
using nCapture::parseCapture;
using nCapture::tCaptureFault;
using nCapture::tMachineRecord;
using testing::HasSubstr;

std::string faultOf(std::string_view text) {
  try {
    static_cast<void>(parseCapture(text));
    return "(accepted)";
  } catch (const tCaptureFault& fault) {
    return fault.what();
  }
}

std::string withReplaced(std::string text, const std::string& old, const std::string& now) {
  const size_t at = text.find(old);
  EXPECT_NE(at, std::string::npos) << old;
  return text.replace(at, old.size(), now);
}

TEST(CaptureFile, ReadBack_IsTheSameText) {
  std::mt19937 random(7);
  for (int i = 0; i < 200; ++i) {
    const std::string text = captureText(captured(randomMachine(random)));
    EXPECT_EQ(captureText(parseCapture(text)), text);
  }
}

TEST(CaptureFile, ReadBack_KeepsEveryByteOfATextThatIsNotUtf8) {
  tMachineRecord record = captured(referenceMachine());
  const std::string text = std::string("a\xFF\x01\xC3", 4);
  record.readings.front().value = text;
  const tMachineRecord read = parseCapture(captureText(record));
  EXPECT_EQ(std::get<std::string>(read.readings.front().value), text);
}

TEST(CaptureFile, UnknownMembers_AreIgnored) {
  const std::string text = captureText(referenceMachine());
  EXPECT_EQ(captureText(parseCapture(withReplaced(text, "{", "{\"later\": [1],"))), text);
}

struct tFaultCase {
  const char* name;
  const char* old;
  const char* now;
  const char* fault;
};

class CaptureFileFault : public testing::TestWithParam<tFaultCase> {};

TEST_P(CaptureFileFault, NamesTheMemberAndTheReason) {
  const tFaultCase& row = GetParam();
  EXPECT_EQ(faultOf(withReplaced(captureText(referenceMachine()), row.old, row.now)), row.fault);
}

constexpr tFaultCase kFaultCases[] = {
    {"OtherKind", "\"machine-capture\"", "\"info\"", "kind is not \"machine-capture\""},
    {"NewerFormat", "\"format\": 1", "\"format\": 2",
     "format is not 1; a newer version wrote the capture"},
    {"MissingMember", "\"anonymous\": false,", "", "anonymous is missing"},
    {"WrongType", "\"anonymous\": false", "\"anonymous\": 0", "anonymous is not true or false"},
    {"NegativeCount", "\"controller\": 1", "\"controller\": -1",
     "interfaces.controller is not a number from 0 to 4294967295"},
    {"OddDigits", "\"33", "\"3",
     "driver.smbios.versionText is not pairs of hexadecimal digits in lower case"},
    {"NoDigits", "\"33", "\"3g",
     "driver.smbios.versionText is not pairs of hexadecimal digits in lower case"},
    {"NoId", "\"0x20013100\"", "\"processor\"",
     "driver.controller.attributes[0].id is not an id such as \"0x10000100\""},
    {"NegativeTime", "\"microseconds\": 80", "\"microseconds\": -80",
     "driver.controller.attributes[0].microseconds is not a number of microseconds"},
    {"TextForList", "\"readings\": []", "\"readings\": \"\"", "library.readings is not a list"},
};
INSTANTIATE_TEST_SUITE_P(Cases, CaptureFileFault, testing::ValuesIn(kFaultCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CaptureFile, TruncatedAnywhere_IsRejected) {
  const std::string text = captureText(referenceMachine());
  for (size_t size = 0; size + 2 < text.size(); ++size) {
    EXPECT_NE(faultOf(std::string_view(text).substr(0, size)), "(accepted)") << size;
  }
}

TEST(CaptureFile, DeepNesting_IsReadWithoutRecursion) {
  const std::string nested = std::string(100'000, '[') + std::string(100'000, ']');
  EXPECT_EQ(faultOf(nested), "not a JSON object");
  EXPECT_THAT(faultOf("[[["), HasSubstr("not JSON at byte"));
}

}  // namespace
}  // namespace nTests
