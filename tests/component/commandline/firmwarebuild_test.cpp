#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using tWords = std::vector<std::string>;

class FirmwareBuild : public CommandLineTest {
 protected:
  tRun build(std::string_view payload, const std::vector<std::string>& more = {},
             const std::string& device = "MARTEN", const std::string& version = "1.4.2f7") {
    std::vector<std::string> words = {"firmware",
                                      "build",
                                      folder_.file("payload", payload),
                                      "--output",
                                      path(),
                                      "--device",
                                      device,
                                      "--firmware-version",
                                      version};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
  std::string path() { return folder_.path("update.fwi"); }
  std::string image() { return folder_.content("update.fwi"); }

  tTestFiles folder_;
};

TEST_F(FirmwareBuild, Section_IsWhatTheFormatTells) {
  const tRun result = build("123456789");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out + result.error, IsEmpty());
  EXPECT_EQ(image(),
            "HeaderVersion::1\r\nUpdateType::FWUpdate\r\nVersion::1.4.2f7\r\n"
            "TargetDevice::MARTEN\r\nCRC::0x05440F15\r\nByteCount::9\r\n\r\n"
            "MTIzNDU2Nzg5\r\n");
  EXPECT_EQ(folder_.files(), 2u) << "nothing unfinished stays";
}

TEST_F(FirmwareBuild, PayloadOfAnyLength_IsInspectedAsItWas) {
  for (const size_t length : {0u, 1u, 2u, 3u, 56u, 57u, 58u, 1000u}) {
    const std::vector<uint8_t> bytes = firmwareBytes(length);
    const std::string payload(bytes.begin(), bytes.end());
    for (const char* const lineLength : {"0", "1", "76"}) {
      ASSERT_EQ(build(payload, {"--force", "--line-length", lineLength}).exitCode, 0) << length;
      EXPECT_THAT(image(), HasSubstr("\r\n\r\n" + encodeBase64(bytes, std::stoul(lineLength))))
          << length << " " << lineLength;
      const auto document = run({"firmware", "inspect", path(), "--json"}).document();
      const auto& section = document["image"]["sections"][0];
      EXPECT_TRUE(section["fault"].IsNull());
      EXPECT_EQ(section["byteCount"].GetUint(), length);
      EXPECT_EQ(section["crc"].GetUint(), firmwareCrc(bytes));
    }
  }
}

TEST_F(FirmwareBuild, Lines_Have76CharactersByDefault) {
  ASSERT_EQ(build(std::string(100, 'x')).exitCode, 0);
  EXPECT_THAT(image(), HasSubstr("\r\n\r\n" + encodeBase64(std::vector<uint8_t>(100, 'x'), 76)));
}

TEST_F(FirmwareBuild, FileName_MakesACapsuleOfTheBios) {
  ASSERT_EQ(build("x", {"--file-name", "driver.inf"}, "BIOS").exitCode, 0);
  EXPECT_THAT(image(), HasSubstr("UpdateType::CapsuleUpdate\r\n"));
  EXPECT_THAT(image(), HasSubstr("TargetFileName::driver.inf\r\n"));
  EXPECT_THAT(build("x", {"--file-name", "a"}, "MARTEN").error,
              HasSubstr("only a section for the BIOS"));
}

TEST_F(FirmwareBuild, Append_AddsASectionBehindWhatIsThere) {
  ASSERT_EQ(build("first").exitCode, 0);
  const std::string before = image();
  const auto document = build("second", {"--append", "--json"}, "BIOS", "2.0.0f0").document();
  EXPECT_STREQ(document["kind"].GetString(), "firmware-build");
  ASSERT_EQ(document["image"]["sections"].Size(), 2u);
  EXPECT_STREQ(document["image"]["sections"][1]["device"].GetString(), "BIOS");
  EXPECT_EQ(document["image"]["sections"][1]["order"].GetInt(), 1);
  EXPECT_TRUE(image().starts_with(before));
  EXPECT_EQ(build("x", {"--force"}).exitCode, 0);
  EXPECT_THAT(run({"firmware", "verify", path()}).out, HasSubstr("1 section\n")) << "replaced";
}

TEST_F(FirmwareBuild, AppendToWhatWouldHideOrRefuseIt_IsAFailureAndChangesNothing) {
  for (const std::string& there : {firmwareImage({tFirmwareSection("BIOS")}) + std::string("\0", 1),
                                   firmwareImage({tFirmwareSection("BIOS").with("CRC", "0")})}) {
    static_cast<void>(folder_.file("update.fwi", there));
    const tRun result = build("x", {"--append"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, testing::StartsWith("quenra: "));
    EXPECT_EQ(image(), there);
  }
}

TEST_F(FirmwareBuild, ExistingOutput_NeedsForce) {
  static_cast<void>(folder_.file("update.fwi", "old"));
  const tRun refused = build("x");
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.error, "quenra: cannot write '" + path() +
                               "': the file exists\n"
                               "  --force replaces the file, --append adds a section to it.\n");
  EXPECT_EQ(image(), "old");
  EXPECT_EQ(build("x", {"--force"}).exitCode, 0);
  EXPECT_THAT(image(), testing::StartsWith("HeaderVersion::1"));
}

TEST_F(FirmwareBuild, PayloadThatIsTheOutput_IsWrongUsage) {
  for (const tWords& more : {tWords{}, tWords{"--force"}, tWords{"--append"}}) {
    const std::string payload = folder_.file("payload", "123456789");
    tWords words{"firmware",
                 "build",
                 payload,
                 "--output",
                 folder_.path("./payload"),
                 "--device",
                 "MARTEN",
                 "--firmware-version",
                 "1.4.2f7"};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.error, HasSubstr("' is both the payload and the output\n"));
    EXPECT_EQ(folder_.content("payload"), "123456789");
  }
}

TEST_F(FirmwareBuild, EmptyFileName_IsWrongUsage) {
  const tRun result = build("x", {"--file-name", ""}, "BIOS");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, testing::StartsWith("quenra: the file name is empty\n"));
  EXPECT_EQ(image(), "(none)");
}

TEST_F(FirmwareBuild, AppendToNothing_IsAFailure) {
  EXPECT_EQ(build("x", {"--append"}).exitCode, 1);
  EXPECT_EQ(image(), "(none)");
}

TEST_F(FirmwareBuild, TextThatIsNoVersion_IsWrongUsage) {
  for (const char* const version :
       {"1", "3.0", "1.4.2f7x", "1.4.2f7\r\n2", "\"1.4.2f7\"", "\"1", "1\r\nTargetDevice::BIOS"}) {
    const tRun result = build("x", {}, "MARTEN", version);
    EXPECT_EQ(result.exitCode, 2) << version;
    EXPECT_THAT(result.error, HasSubstr("' is not a version of the form 1.4.2f7\n")) << version;
    EXPECT_EQ(image(), "(none)") << version;
  }
  EXPECT_THAT(build("x", {}, "MARTEN", "").error,
              testing::StartsWith("quenra: the version is empty\n"));
}

TEST_F(FirmwareBuild, FileNameThatIsNotPlain_IsWrongUsage) {
  for (const char* const name : {"C:\\x.cap", "../x.cap", "a b.inf", "nul.cap"}) {
    const tRun result = build("x", {"--file-name", name}, "BIOS");
    EXPECT_EQ(result.exitCode, 2) << name;
    EXPECT_THAT(result.error, HasSubstr("' is not plain: it ")) << name;
    EXPECT_EQ(image(), "(none)") << name;
  }
}

TEST_F(FirmwareBuild, AppendToAFileThatIsNoImage_NamesTheFile) {
  static_cast<void>(folder_.file("update.fwi", "PK"));
  const tRun result = build("x", {"--append"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error,
              testing::StartsWith("quenra: '" + path() + "' is not a firmware image: "));
  EXPECT_EQ(image(), "PK");
}

TEST_F(FirmwareBuild, WrongWords_AreWrongUsage) {
  EXPECT_EQ(build("x", {}, "MARTIN").exitCode, 2);
  EXPECT_THAT(build("x", {}, "MARTIN").error, HasSubstr("Did you mean MARTEN?"));
  EXPECT_EQ(build("x", {"--line-length", "many"}).exitCode, 2);
  EXPECT_EQ(image(), "(none)");
}

TEST_F(FirmwareBuild, FileThatCannotBeUsed_IsAFailureOfTheProgram) {
  const std::string payload = folder_.file("payload", "x");
  const tRun unread = run({"firmware", "build", folder_.path("none"), "--output", path(),
                           "--device", "MARTEN", "--firmware-version", "1.4.2f7"});
  EXPECT_EQ(unread.exitCode, 1);
  EXPECT_EQ(unread.error, "quenra: cannot read '" + folder_.path("none") + "': no such file\n");
  const tRun unwritten = run({"firmware", "build", payload, "--output", folder_.path("none/image"),
                              "--device", "MARTEN", "--firmware-version", "1.4.2f7"});
  EXPECT_EQ(unwritten.exitCode, 1);
  EXPECT_EQ(unwritten.error,
            "quenra: cannot write '" + folder_.path("none/image") + "': no such directory\n");
}

// ---- Extract ----

class FirmwareExtract : public CommandLineTest {
 protected:
  tRun extract(const std::vector<tFirmwareSection>& sections, const std::string& number,
               const tWords& more = {}) {
    tWords words{"firmware",
                 "extract",
                 folder_.file("update.fwi", firmwareImage(sections)),
                 "--section",
                 number,
                 "--output",
                 folder_.path("payload")};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
  static std::string dataOf(const tFirmwareSection& section) {
    return {section.data().begin(), section.data().end()};
  }

  // The BIOS section and the driver package are applied before the others.
  const std::vector<tFirmwareSection> sections_{
      tFirmwareSection("MARTEN").payload(firmwareBytes(1000, 1)),
      tFirmwareSection("BIOS").payload(firmwareBytes(1001, 2)),
      tFirmwareSection("SAFEMODE").payload(firmwareBytes(0, 3)),
      tFirmwareSection::capsule("a.inf").payload(firmwareBytes(1003, 4)),
      tFirmwareSection::capsule("b.cap").payload(firmwareBytes(1004, 5))};
  tTestFiles folder_;
};

TEST_F(FirmwareExtract, EverySection_IsWrittenAsItWas) {
  for (size_t i = 0; i < sections_.size(); ++i) {
    const tRun result = extract(sections_, std::to_string(i + 1), {"--force"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out + result.error, IsEmpty());
    EXPECT_EQ(folder_.content("payload"), dataOf(sections_[i])) << i;
  }
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(FirmwareExtract, Document_HasTheDigestOfTheFile) {
  const auto document =
      extract({tFirmwareSection("BIOS").payload(firmwareBytes(1, 2)),
               tFirmwareSection("MARTEN").version("1.4.2f7").payload(
                   std::vector<uint8_t>{'1', '2', '3', '4', '5', '6', '7', '8', '9'})},
              "2", {"--json"})
          .document();
  EXPECT_THAT(memberNames(document),
              testing::ElementsAre("format", "kind", "exitCode", "warnings", "path", "section",
                                   "device", "updateType", "version", "fileName", "byteCount",
                                   "crc", "sha256", "output"));
  EXPECT_STREQ(document["kind"].GetString(), "firmware-extract");
  EXPECT_EQ(document["section"].GetInt(), 2);
  EXPECT_STREQ(document["version"].GetString(), "1.4.2f7");
  EXPECT_EQ(document["byteCount"].GetInt(), 9);
  EXPECT_STREQ(document["sha256"].GetString(),
               "15e2b0d3c33891ebb0f1ef609ec419420c20e320ce94c65fbc8c3312448eb225");
  EXPECT_EQ(document["output"].GetString(), folder_.path("payload"));
}

TEST_F(FirmwareExtract, RefusedSection_IsNotWritten) {
  auto sections = sections_;
  sections[1].with("CRC", "1");
  const tRun result = extract(sections, "2");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("quenra: section 2 is refused: CRC mismatch: header "
                                      "0x00000001, payload 0x"));
  EXPECT_THAT(result.error, HasSubstr("\n  -26938 QUENRA_STATUS_INVALID_IMAGE\n"));
  EXPECT_THAT(result.error, HasSubstr("\n  Advice: Fetch the image again"));
  EXPECT_EQ(folder_.content("payload"), "(none)");
  // A fault of another section does not matter, before or after it.
  EXPECT_EQ(extract(sections, "1").exitCode, 0);
  EXPECT_EQ(folder_.content("payload"), dataOf(sections[0]));
  EXPECT_EQ(extract(sections, "4", {"--force"}).exitCode, 0);
  EXPECT_EQ(folder_.content("payload"), dataOf(sections[3]));
}

TEST_F(FirmwareExtract, ImpossibleSections_AreRejected) {
  for (const char* const number : {"0", "-1", "x", "", "4294967296"}) {
    EXPECT_EQ(extract(sections_, number).exitCode, 2) << number;
  }
  const tRun result = extract(sections_, "6");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("' has no section 6, only 5 sections\n"
                                      "  Run 'quenra firmware inspect' to list the sections.\n"));
  EXPECT_THAT(extract({}, "1").error, HasSubstr("' is not a firmware image: the file is empty\n"));
  EXPECT_EQ(folder_.content("payload"), "(none)");
}

TEST_F(FirmwareExtract, ExistingFile_IsReplacedWithForceOnly) {
  folder_.file("payload", "mine");
  const tRun result = extract(sections_, "1");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("payload': the file exists\n  --force replaces the file.\n"));
  EXPECT_EQ(folder_.content("payload"), "mine");
  EXPECT_EQ(extract(sections_, "1", {"--force"}).exitCode, 0);
  EXPECT_EQ(folder_.content("payload"), dataOf(sections_[0]));
}

TEST_F(FirmwareExtract, Image_IsNeverOverwritten) {
  const std::string image = firmwareImage(sections_);
  const std::string path = folder_.file("update.fwi", image);
  EXPECT_EQ(
      run({"firmware", "extract", path, "--section", "1", "--output", path, "--force"}).exitCode,
      2);
  EXPECT_EQ(folder_.content("update.fwi"), image);
}

}  // namespace
}  // namespace nTests
