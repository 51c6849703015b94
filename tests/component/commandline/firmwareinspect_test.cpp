// The verbs `firmware inspect` and `firmware verify`.
#include "source/user/firmware/tfirmwareimageparser.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/firmware/firmwareimage.h"

namespace nTests {
namespace {

using nCommandLine::inspectImage;
using nCommandLine::tFirmwareImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kDigestOfDigits =
    "15e2b0d3c33891ebb0f1ef609ec419420c20e320ce94c65fbc8c3312448eb225";
constexpr const char* kDigestOfNothing =
    "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

// ---- Inspect ----

class FirmwareInspect : public CommandLineTest {
 protected:
  std::string fileOf(const std::vector<tFirmwareSection>& sections) {
    return folder_.file("update.fwi", firmwareImage(sections));
  }

  tTestFiles folder_;
};

std::span<const uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

tFirmwareSection digits(std::string_view device, std::string_view updateType = "FWUpdate") {
  return tFirmwareSection(device, updateType).payload(bytesOf("123456789"));
}

TEST_F(FirmwareInspect, Sections_AreATable) {
  const tRun result =
      run({"firmware", "inspect",
           fileOf({digits("MARTEN").version("1.4.2f7"), digits("BIOS").version("2.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_THAT(
      result.out,
      HasSubstr(" bytes, 0 faults\n\n"
                "Section  Order  Device  Type      Version  File  Bytes  CRC         Verdict\n"
                "1        2      MARTEN  FWUpdate  1.4.2f7  -     9      0x05440F15  good\n"
                "2        1      BIOS    FWUpdate  2.0.0f0  -     9      0x05440F15  good\n"));
  EXPECT_EQ(library_.opens, 0) << "no controller is needed";
}

TEST_F(FirmwareInspect, RefusedSection_IsShownWithTheReasonAndThoseBehindItToo) {
  const tRun result = run(
      {"firmware", "inspect",
       fileOf({digits("MARTEN"), digits("BIOS").with("CRC", "1"),
               digits("MARTEN").with("ByteCount", "8"), digits("SAFEMODE"), digits("TOASTER")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, HasSubstr("5 sections, "));
  EXPECT_THAT(result.out, HasSubstr(", 3 faults\n"));
  EXPECT_THAT(result.out, HasSubstr("\n2        -      BIOS      FWUpdate  1.2.3f4  -     9      "
                                    "0x05440F15  refused: CRC mismatch: header 0x00000001, payload "
                                    "0x05440F15\n"));
  EXPECT_THAT(result.out,
              HasSubstr("refused: the payload does not decode to ByteCount bytes: header "
                        "8, payload 9\n4        -      SAFEMODE"));
  EXPECT_THAT(result.out, HasSubstr("TargetDevice is not BIOS, MARTEN or SAFEMODE\n"));
}

TEST_F(FirmwareInspect, Document_HasThePromisedMembers) {
  const std::string path =
      fileOf({tFirmwareSection::capsule("a.inf"), digits("BIOS").with("CRC", "1")});
  const auto document = run({"firmware", "inspect", path, "--json"}).document();
  EXPECT_STREQ(document["kind"].GetString(), "firmware-inspect");
  const auto& image = document["image"];
  EXPECT_THAT(memberNames(image), ElementsAre("path", "size", "valid", "sections"));
  EXPECT_EQ(image["path"].GetString(), path);
  EXPECT_FALSE(image["valid"].GetBool());
  const auto& good = image["sections"][0];
  EXPECT_THAT(memberNames(good),
              ElementsAre("position", "order", "headerVersion", "device", "updateType", "version",
                          "fileName", "declaredByteCount", "declaredCrc", "textSize", "byteCount",
                          "crc", "sha256", "fault", "remarks"));
  EXPECT_STREQ(good["fileName"].GetString(), "a.inf");
  EXPECT_STREQ(good["updateType"].GetString(), "CapsuleUpdate");
  EXPECT_EQ(good["byteCount"].GetUint(), 100u);
  EXPECT_TRUE(good["fault"].IsNull());
  EXPECT_TRUE(good["order"].IsNull()) << "the other section keeps it from being applied";
  const auto& fault = image["sections"][1]["fault"];
  EXPECT_THAT(memberNames(fault), ElementsAre("reason", "remedy", "status", "line"));
  EXPECT_EQ(fault["status"]["code"].GetInt(), QUENRA_STATUS_INVALID_IMAGE);
  EXPECT_EQ(fault["line"].GetUint(), 258u);
  EXPECT_EQ(image["sections"][1]["declaredCrc"].GetUint(), 1u);
  EXPECT_EQ(image["sections"][1]["crc"].GetUint(), 0x05440F15u);
  EXPECT_STREQ(image["sections"][1]["sha256"].GetString(), kDigestOfDigits);
}

TEST_F(FirmwareInspect, Digests_AreThoseOfTheDecodedPayloadsInTheOrderOfTheImage) {
  const std::string path = fileOf({digits("MARTEN"), tFirmwareSection("BIOS").payload({}),
                                   digits("BIOS").with("CRC", "1"), digits("SAFEMODE")});
  EXPECT_THAT(run({"firmware", "inspect", path}).out,
              HasSubstr("\n\nSHA-256 of the decoded payloads\n"
                        "  1  " +
                        std::string(kDigestOfDigits) +
                        "\n"
                        "  2  " +
                        kDigestOfNothing +
                        "\n"
                        "  3  " +
                        kDigestOfDigits +
                        "\n"
                        "  4  " +
                        kDigestOfDigits + "\n"));
}

TEST_F(FirmwareInspect, SectionWithoutAPayload_HasNoDigest) {
  std::string image = firmwareImage({digits("MARTEN")});
  image.resize(image.find("\r\n\r\n"));
  const std::string path = folder_.file("update.fwi", image);
  EXPECT_THAT(run({"firmware", "inspect", path}).out, testing::EndsWith("payloads\n  1  -\n"));
  EXPECT_TRUE(run({"firmware", "inspect", path, "--json"})
                  .document()["image"]["sections"][0]["sha256"]
                  .IsNull());
}

TEST_F(FirmwareInspect, FileWithoutASection_IsAnErrorWithTheReason) {
  using namespace std::string_view_literals;
  const std::tuple<std::string_view, const char*, const char*> files[] = {
      {"PK\0\x03"sv, "0 sections, 4 bytes, 0 faults\n", "the file has no 'HeaderVersion::'"},
      {"", "0 sections, 0 bytes, 0 faults\n", "the file is empty"},
      {"\xFF\xFEH\0"sv, "0 sections, 4 bytes, 0 faults\n",
       "the file appears to be UTF-16; an image is plain ASCII text"},
      {"H\0e\0a\0d\0e\0r\0"sv, "0 sections, 12 bytes, 0 faults\n",
       "the file appears to be UTF-16; an image is plain ASCII text"},
  };
  for (const auto& [content, out, reason] : files) {
    const std::string path = folder_.file("x", content);
    const tRun result = run({"firmware", "inspect", path});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, out);
    EXPECT_THAT(result.error, testing::StartsWith("quenra: '" + path +
                                                  "' is not a firmware image: " + reason + "\n"));
    const auto document = run({"firmware", "inspect", path, "--json"}).document();
    EXPECT_STREQ(document["kind"].GetString(), "firmware-inspect");
    EXPECT_EQ(document["exitCode"].GetInt(), 1);
  }
}

TEST_F(FirmwareInspect, ControlCharacters_DoNotReachTheTerminal) {
  const tRun result = run({"firmware", "inspect", fileOf({digits("MARTEN").version("\x1B[31m")})});
  EXPECT_THAT(result.out, HasSubstr("\\x1B[31m"));
}

TEST_F(FirmwareInspect, FileThatCannotBeRead_IsAFailureOfTheProgram) {
  for (const std::string& path : {folder_.path("none"), folder_.path("")}) {
    const tRun result = run({"firmware", "inspect", path, "--json"});
    EXPECT_EQ(result.exitCode, 1) << path;
    EXPECT_THAT(result.error, testing::StartsWith("quenra: cannot read '" + path + "': "));
    const auto document = result.document();
    EXPECT_STREQ(document["error"]["cause"].GetString(), "program");
    EXPECT_EQ("quenra: " + std::string(document["error"]["message"].GetString()) + "\n",
              result.error);
  }
}

TEST_F(FirmwareInspect, FileName_MayHoldAnyCharacter) {
  const std::string path = folder_.file("Größe 3.fwi", firmwareImage({digits("MARTEN")}));
  EXPECT_EQ(run({"firmware", "inspect", path}).exitCode, 0);
}

TEST_F(FirmwareInspect, Order_IsTheParsersOwn) {
  const std::string image = firmwareImage(
      {digits("BIOS").version("1"), digits("MARTEN").version("2"),
       tFirmwareSection::capsule("driver.inf").version("3"), digits("BIOS").version("4"),
       tFirmwareSection::capsule("a.cap").version("5"), digits("SAFEMODE").version("6"),
       tFirmwareSection::capsule("x.information").version("7"),
       digits("MARTEN", "CapsuleUpdate").version("8")});
  nQUENRA1400::tFirmwarePayloads records;
  zoerr::tOwnedStatus status;
  nQUENRA1400::tFirmwareImageParser().Parse(records, image.data(), image.size(), status);
  ASSERT_EQ(records.size(), 8u);
  for (const auto& section : inspectImage(image).sections) {
    ASSERT_GE(section.order, 1u);
    EXPECT_EQ(records[section.order - 1].version, section.header.version);
  }
  nQUENRA1400::freePayloads(records);
}

TEST_F(FirmwareInspect, HeaderLinesThatEndInLineFeed_AreNamed) {
  std::string image = firmwareImage({digits("MARTEN"), digits("BIOS")});
  std::erase(image, '\r');
  const tRun result = run({"firmware", "verify", folder_.file("x.fwi", image)});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error,
              HasSubstr("section 1: header lines end in LF; CR LF is required\n  -26933 "));
  EXPECT_THAT(result.error,
              HasSubstr("\n  Advice: Convert the line ends of the image to CR LF.\n"));
}

TEST_F(FirmwareInspect, RemarksOnASection_AreShownAndInTheDocument) {
  const std::string path = fileOf({digits("MARTEN").version("3.0"),
                                   tFirmwareSection::capsule("..\\x.inf").version("1.2.3f4x")});
  const tRun result = run({"firmware", "inspect", path});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out,
              HasSubstr("  good, but '3.0' is not a version of the form 1.4.2f7 and counts as the "
                        "oldest\n"));
  EXPECT_THAT(
      result.out,
      HasSubstr("  unsafe: the file name '..\\x.inf' is not plain: it has a path separator; "
                "good, but '1.2.3f4x' is not a version of the form 1.4.2f7\n"));
  const auto document = run({"firmware", "inspect", path, "--json"}).document();
  EXPECT_FALSE(document["image"]["valid"].GetBool());
  const auto& remarks = document["image"]["sections"][1]["remarks"];
  ASSERT_EQ(remarks.Size(), 2u);
  EXPECT_THAT(memberNames(remarks[0]), ElementsAre("fact", "remedy", "refused"));
  EXPECT_TRUE(remarks[0]["refused"].GetBool());
  EXPECT_FALSE(remarks[1]["refused"].GetBool());
}

TEST(SectionRemark, FileNamesThatAreNotOnePlainComponent_AreFaults) {
  for (const char* const name : {"a/b",          "\\\\server\\share\\x.cap",
                                 "C:\\x.cap",    "D:x.cap",
                                 "x.cap:stream", ".",
                                 "..",           "a\nb",
                                 "a\x7F",        "a\tb",
                                 "a<",           "a|b",
                                 "a\"",          "a?",
                                 "a*",           "x.cap.",
                                 "x.cap ",       "CON",
                                 "nul",          "Nul.txt",
                                 "com1",         "LPT9.inf",
                                 "COM\xB9",      "com\xC2\xB2.x",
                                 "aux .cap",     "PRN.a.b",
                                 "conin$",       "CONOUT$.x",
                                 "clock$",       "a driver.inf",
                                 " x.inf"}) {
    EXPECT_TRUE(nCommandLine::faultOfFileName(name)) << name;
  }
}

TEST(SectionRemark, PlainFileNames_AreNone) {
  for (const char* const name :
       {"", "a.inf", "Gr\u00F6\u00DFe.inf", "a..b", ".cap", "a b.cap", " a.cap", "console.cap",
        "com.cap", "com10", "lpt", "nulls", "x-1_2(3).CAT", "CO", "c"}) {
    EXPECT_EQ(nCommandLine::faultOfFileName(name), std::nullopt) << name;
  }
}

TEST(SectionRemark, Versions_HaveMajorMinorUpdatePhaseAndBuild) {
  for (const char* const version :
       {"1.4.2f7", "0.0.0f0", "0.0.0d1", "255.15.15f16383", "3.1.0b2", "3.1.0a2"}) {
    EXPECT_TRUE(nCommandLine::isFirmwareVersion(version)) << version;
  }
  for (const char* const version :
       {"", "1", "3.0", "1.4.2", "1.4.2f", "1.4.2x7", "01.4.2f7", "1.16.0f0", "256.0.0f0",
        "1.4.2f16384", "1.4.2f7 ", "1.4.2f7x", "v1.4.2f7", " 1.4.2f7", "1.4.2F7", "1.4.2f7f7"}) {
    EXPECT_FALSE(nCommandLine::isFirmwareVersion(version)) << version;
  }
}

// Every row of the format's table of failures, in its order.
const std::pair<uint32_t, tFirmwareSection> kFaulty[] = {
    {164, digits("BIOS").with("HeaderVersion", "2")},
    {176, digits("BIOS", "Update")},
    {186, digits("CASE")},
    {214, digits("MARTEN").separator("")},
    {241, digits("MARTEN").with("ByteCount", "10")},
    {258, digits("MARTEN").with("CRC", "0")},
    {339, digits("MARTEN").with("CRC", "")},
    {351, digits("MARTEN").without("CRC")},
    {409, digits("MARTEN").without("Version")},
    {425, digits("MARTEN").with("Version", "")},
    {487, digits("MARTEN").with("Version", "\"1")},
};

TEST_F(FirmwareInspect, EveryFaultOfTheFormat_HasAReasonAndARemedy) {
  const auto documented = tableUnder("docs/firmware-image.md", "## Errors");
  ASSERT_EQ(documented.size(), std::size(kFaulty));
  for (size_t i = 0; i < documented.size(); ++i) {
    const auto& [line, section] = kFaulty[i];
    EXPECT_EQ(documented[i][1], std::to_string(line));
    // No later section may supply the missing key; only line 214 needs one, for its empty line.
    const std::string tail = line == 214 ? firmwareImage({digits("MARTEN")}) : "";
    const tFirmwareImage image = inspectImage(firmwareImage({digits("BIOS"), section}) + tail);
    ASSERT_GE(image.sections.size(), 2u) << line;
    EXPECT_FALSE(image.sections[0].fault) << line;
    const auto& fault = image.sections[1].fault;
    ASSERT_TRUE(fault) << line;
    EXPECT_EQ(fault->line, line);
    EXPECT_EQ(std::to_string(fault->code), documented[i][0]);
    EXPECT_FALSE(fault->reason.empty() || fault->reason.ends_with('.')) << line;
    EXPECT_TRUE(fault->remedy.ends_with('.')) << line;
  }
}

// ---- Verify ----

class FirmwareVerify : public CommandLineTest {
 protected:
  tRun verify(const std::string& image, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"firmware", "verify", folder_.file("update.fwi", image)};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }

  tTestFiles folder_;
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
