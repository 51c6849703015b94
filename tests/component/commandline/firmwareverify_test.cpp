#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tests/component/commandline/temporaryfolder.h"

namespace nTests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class FirmwareVerify : public CommandLineTest {
 protected:
  tRun verify(const std::string& image, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"firmware", "verify", folder_.file("update.fwi", image)};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }

  tTemporaryFolder folder_;
};

TEST_F(FirmwareVerify, GoodImage_IsSaidInALineAndADocument) {
  const std::string image = firmwareImage({tFirmwareSection("BIOS"), tFirmwareSection("MARTEN")});
  const tRun result = verify(image);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "good: 2 sections\n");
  EXPECT_THAT(result.error, IsEmpty());
  const auto document = verify(image, {"--json"}).document();
  EXPECT_STREQ(document["kind"].GetString(), "firmware-verify");
  EXPECT_EQ(document["exitCode"].GetInt(), 0);
  EXPECT_TRUE(document["image"]["valid"].GetBool());
  EXPECT_EQ(document["image"]["sections"][1]["order"].GetInt(), 2);
}

TEST_F(FirmwareVerify, EveryFault_IsReportedWithCodeLineAndRemedy) {
  const std::string image =
      firmwareImage({tFirmwareSection("BIOS").with("CRC", "0"), tFirmwareSection("MARTEN"),
                     tFirmwareSection("MARTEN").with("HeaderVersion", "2")});
  const tRun result = verify(image);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error,
              HasSubstr("update.fwi, section 1: CRC mismatch: header 0x00000000, payload 0x"));
  EXPECT_THAT(result.error,
              HasSubstr("\n  -26938 QUENRA_STATUS_INVALID_IMAGE, line 258\n  Advice: "));
  EXPECT_THAT(result.error, HasSubstr("update.fwi, section 3: HeaderVersion is not 1\n  -26941 "
                                      "QUENRA_STATUS_IMAGE_VERSION, line 164\n"));
  EXPECT_THAT(result.error, Not(HasSubstr("section 2")));
  const auto document = verify(image, {"--json"}).document();
  EXPECT_EQ(document["exitCode"].GetInt(), 1);
  EXPECT_FALSE(document["image"]["valid"].GetBool());
}

TEST_F(FirmwareVerify, FileNameThatIsNotPlain_IsAFailureWithARemedy) {
  const tRun result = verify(firmwareImage({tFirmwareSection::capsule("C:\\x.cap")}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error,
              HasSubstr("update.fwi, section 1: the file name 'C:\\x.cap' is not plain: "
                        "it has a path separator\n  Advice: "));
}

TEST_F(FirmwareVerify, TextThatIsNoVersion_IsAWarning) {
  const tRun result = verify(firmwareImage({tFirmwareSection("BIOS").version("3.0")}));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "good: 1 section\n");
  EXPECT_THAT(result.error, testing::StartsWith("quenra: warning: "));
  EXPECT_THAT(result.error, HasSubstr("section 1: '3.0' is not a version of the form 1.4.2f7 and "
                                      "counts as the oldest\n"));
}

TEST_F(FirmwareVerify, FileWithoutASection_IsNotTakenForAnImage) {
  const tRun result = verify("PK\x03\x04", {"--json"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("' is not a firmware image: the file has no "));
  EXPECT_FALSE(result.document()["image"]["valid"].GetBool());
}

}  // namespace
}  // namespace nTests
