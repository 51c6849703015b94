#include "source/user/firmware/tfirmwareimageparser.h"

#include <random>
#include <utility>

#include "quenra_status.h"
#include "tests/component/user/firmware/parsertest.h"
#include "tests/component/user/firmware/plainimage.h"

namespace nTests {
namespace {

using testing::ElementsAre;

// Completes an image whose header is a part of its own payload: replaces "NN" by the payload's
// length, and appends the bytes that make its CRC 0.
std::string withCrcOfZero(std::string image, size_t payloadStart) {
  const auto payload = [&] { return plainDecode(image.substr(payloadStart)); };
  // Pads until the digits fill complete bytes: one more digit then adds no byte.
  while (plainDecode(image.substr(payloadStart) + "A").size() != payload().size()) {
    image += 'A';
  }
  image.replace(image.find("NN"), 2, std::to_string(payload().size() + 4));
  // Four bytes take the CRC register from any value to all ones: divide by x once per bit.
  uint32_t bytes = 0xFFFFFFFF;
  for (int bit = 0; bit < 32; ++bit) {
    bytes = (bytes & 1) == 0 ? bytes >> 1 : ((bytes ^ 0x1EDC6F41) >> 1) | 0x80000000;
  }
  bytes ^= ~firmwareCrc(payload());
  return image + encodeBase64(std::vector<uint8_t>{
                     static_cast<uint8_t>(bytes >> 24), static_cast<uint8_t>(bytes >> 16),
                     static_cast<uint8_t>(bytes >> 8), static_cast<uint8_t>(bytes)});
}

class Parser : public ParserTest {
 protected:
  // A section with this version and an empty payload.
  static std::string emptySection(std::string_view version) {
    return tFirmwareSection("MARTEN").version(version).payload({}).text();
  }
};

// ---- Accepted images ----

TEST_F(Parser, ASection_BecomesARecord) {
  const tFirmwareSection section("MARTEN");
  EXPECT_EQ(parse({section}), kSuccess);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].targetDevice, "MARTEN");
  EXPECT_EQ(records[0].version, "1.2.3f4");
  EXPECT_EQ(records[0].targetFileName, "");
  EXPECT_EQ(data(0), section.data());
}

TEST_F(Parser, ExampleOfTheDocument_IsAccepted) {
  EXPECT_EQ(parse("HeaderVersion::1\r\nUpdateType::FWUpdate\r\nVersion::1.4.2f7\r\n"
                  "TargetDevice::MARTEN\r\nCRC::0x05440f15\r\nByteCount::9\r\n\r\nMTIzNDU2Nzg5"),
            kSuccess);
  EXPECT_EQ(data(0), (std::vector<uint8_t>{'1', '2', '3', '4', '5', '6', '7', '8', '9'}));
}

TEST_F(Parser, ImageWithoutSection_HasNoRecordAndNoFailure) {
  for (const std::string_view image : {"", "H", "HeaderVersion:", "any text: \r\n\r\n::"}) {
    EXPECT_EQ(parse(image), kSuccess) << image;
  }
  EXPECT_TRUE(records.empty());
}

TEST_F(Parser, NoImage_HasNoRecordAndNoFailure) {
  zoerr::tOwnedStatus status;
  nQUENRA1400::tFirmwareImageParser().Parse(records, nullptr, 100, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_TRUE(records.empty());
}

// These addresses are not mapped, so that a read would end the test.
TEST_F(Parser, ImageThatWrapsAroundTheAddressSpace_FailsWithInvalidParameterAndIsNotRead) {
  constexpr uintptr_t kLastPage = UINTPTR_MAX - 0xFFF;
  const std::pair<uintptr_t, size_t> images[] = {{kLastPage, 0x1000},  // ends at address 0
                                                 {kLastPage, 0x1001},
                                                 {kLastPage, SIZE_MAX},
                                                 {1, SIZE_MAX}};
  for (const auto& [address, size] : images) {
    zoerr::tOwnedStatus status;
    const auto* const image = reinterpret_cast<const void*>(address);
    nQUENRA1400::tFirmwareImageParser().Parse(records, image, size, status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER) << address << " + " << size;
    EXPECT_EQ(lineOf(status), 163u);
  }
  EXPECT_TRUE(records.empty());
}

TEST_F(Parser, OnAStatusInError_DoesNothing) {
  const std::string image = tFirmwareSection().text();
  zoerr::tOwnedStatus status;
  status.code = -1;
  nQUENRA1400::tFirmwareImageParser().Parse(records, image.data(), image.size(), status);
  EXPECT_EQ(status.code, -1);
  EXPECT_TRUE(records.empty());
}

TEST_F(Parser, OnAStatusWithAWarning_ParsesAndReportsErrors) {
  const std::string image = firmwareImage({tFirmwareSection(), tFirmwareSection("bios")});
  zoerr::tOwnedStatus status;
  status.code = 1;
  nQUENRA1400::tFirmwareImageParser().Parse(records, image.data(), image.size(), status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_IMAGE);
  EXPECT_EQ(records.size(), 1u);
}

TEST_F(Parser, RecordsThatAreThere_Stay) {
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("old")}), kSuccess);
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("new")}), kSuccess);
  EXPECT_THAT(versions(), ElementsAre("old", "new"));
}

TEST_F(Parser, TextBeforeTheFirstSection_IsIgnored) {
  EXPECT_EQ(parse("CRC::1\r\n\r\nByteCount::9\r\n" + tFirmwareSection().text()), kSuccess);
  EXPECT_EQ(data(0), tFirmwareSection().data());
}

TEST_F(Parser, KeysInAnyOrder_AreFound) {
  EXPECT_EQ(parse({tFirmwareSection::capsule("a.bin").reverseHeader()}), kSuccess);
  EXPECT_EQ(records.at(0).version, "1.2.3f4");
  EXPECT_EQ(records.at(0).targetFileName, "a.bin");
}

TEST_F(Parser, FirstOfTwoEqualKeys_Counts) {
  const std::string image =
      "HeaderVersion::1\r\nTargetDevice::SAFEMODE\r\nVersion::1\r\nVersion::2"
      "\r\nTargetDevice::x\r\nUpdateType::FWUpdate\r\nCRC::0\r\nCRC::1\r\n"
      "ByteCount::0\r\n\r\n";
  EXPECT_EQ(parse(image), kSuccess);
  EXPECT_THAT(versions(), ElementsAre("1"));
}

TEST_F(Parser, EveryTargetDevice_IsAccepted) {
  EXPECT_EQ(parse({tFirmwareSection("BIOS"), tFirmwareSection("MARTEN"),
                   tFirmwareSection("SAFEMODE"), tFirmwareSection("MARTEN", "CapsuleUpdate")}),
            kSuccess);
  EXPECT_EQ(records.size(), 4u);
}

TEST_F(Parser, BrokenAndPaddedPayload_DecodesLikeUnbroken) {
  for (size_t count = 0; count < 200; ++count) {
    for (const size_t lineLength : {0u, 1u, 4u, 64u, 76u, 77u}) {
      const tFirmwareSection section =
          tFirmwareSection("MARTEN").payload(firmwareBytes(count), lineLength);
      ASSERT_EQ(parse({section}), kSuccess) << count << " bytes in lines of " << lineLength;
      ASSERT_EQ(data(records.size() - 1), section.data());
    }
  }
}

TEST_F(Parser, EmptyPayload_IsAcceptedWithACrcOfZeroInAnyNotation) {
  for (const std::string_view zero : {"0", "0x0", "0x", "00", "-0", "none"}) {
    tFirmwareSection section("MARTEN");
    section.payload({}).with("CRC", zero);
    EXPECT_EQ(parse({section}), kSuccess) << zero;
    // The separator ends the image: not a single byte follows it.
    EXPECT_TRUE(section.text().ends_with("\r\n\r\n"));
  }
  for (const auto& record : records) {
    EXPECT_NE(record.data, nullptr);
    EXPECT_EQ(record.byteCount, 0u);
  }
}

TEST_F(Parser, NumbersInHexadecimal_AreRead) {
  tFirmwareSection section;
  char crc[16];
  std::snprintf(crc, sizeof crc, "0x%08x", firmwareCrc(section.data()));
  section.with("CRC", crc).with("ByteCount", "0x64").with("HeaderVersion", "0x1");
  EXPECT_EQ(parse({section}), kSuccess);
}

TEST_F(Parser, QuotedTexts_AreReadWithoutQuotes) {
  EXPECT_EQ(parse({tFirmwareSection("\"BIOS\"", "\"FWUpdate\"").version("\"1.0\"")}), kSuccess);
  EXPECT_EQ(records.at(0).targetDevice, "BIOS");
  EXPECT_THAT(versions(), ElementsAre("1.0"));
}

TEST_F(Parser, QuotedNothing_IsAText) {
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("\"\"")}), kSuccess);
  EXPECT_THAT(versions(), ElementsAre(""));
}

TEST_F(Parser, PayloadWithNul_ContinuesAfterItToTheEndOfTheImage) {
  tFirmwareSection section("MARTEN");
  const std::string text = encodeBase64(section.data());
  section.payloadText(text.substr(0, 40) + '\0' + text.substr(40));
  EXPECT_EQ(parse({section}), kSuccess);
  EXPECT_EQ(data(0), section.data());
}

TEST_F(Parser, SectionsAfterANul_BelongToThePayloadBeforeIt) {
  tFirmwareSection section("MARTEN");
  const std::string rest = emptySection("hidden");
  std::vector<uint8_t> decoded = plainDecode(encodeBase64(section.data()) + rest);
  const std::string image = section.with("ByteCount", std::to_string(decoded.size()))
                                .with("CRC", std::to_string(firmwareCrc(decoded)))
                                .text() +
                            '\0' + rest;
  EXPECT_EQ(parse(image), kSuccess);
  EXPECT_THAT(versions(), ElementsAre("1.2.3f4"));
  EXPECT_EQ(data(0), decoded);
}

TEST_F(Parser, ImageThatIsLongerThanItsSize_EndsAtItsSize) {
  const std::string image = firmwareImage({tFirmwareSection("MARTEN"), tFirmwareSection("bad")});
  EXPECT_EQ(parse(std::string_view(image).substr(0, tFirmwareSection("MARTEN").text().size())),
            kSuccess);
  EXPECT_EQ(records.size(), 1u);
}

// ---- Order ----

TEST_F(Parser, BiosFirmware_ComesFirstAndReversed) {
  EXPECT_EQ(
      parse({tFirmwareSection("BIOS").version("first"), tFirmwareSection("BIOS").version("second"),
             tFirmwareSection("MARTEN").version("marten")}),
      kSuccess);
  EXPECT_THAT(versions(), ElementsAre("second", "first", "marten"));
}

TEST_F(Parser, DriverPackage_ComesFirstUnderItsNameWithoutQuotes) {
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("marten"),
                   tFirmwareSection::capsule("\"driver.inf\"").version("driver")}),
            kSuccess);
  EXPECT_THAT(versions(), ElementsAre("driver", "marten"));
  EXPECT_EQ(records[0].targetFileName, "driver.inf");
}

TEST_F(Parser, InfAnywhereInTheName_MakesADriverPackage) {
  for (const std::string_view name : {".inf", "a.info", "a.inf.bin", "\"x\".inf"}) {
    EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("marten"),
                     tFirmwareSection::capsule(name).version("driver")}),
              kSuccess);
    EXPECT_EQ(records[0].version, "driver") << name;
    freePayloads(records);
    records.clear();
  }
}

TEST_F(Parser, OtherCapsules_StayInOrder) {
  for (const std::string_view name : {"a.INF", "inf", "in.f", "a.cap"}) {
    EXPECT_EQ(parse({tFirmwareSection("MARTEN").version("marten"),
                     tFirmwareSection::capsule(name).version("capsule")}),
              kSuccess);
    EXPECT_EQ(records.back().version, "capsule") << name;
    freePayloads(records);
    records.clear();
  }
}

TEST_F(Parser, BiosFirmwareAndDriverPackages_AreReversedTogether) {
  EXPECT_EQ(
      parse({tFirmwareSection("BIOS").version("1"), tFirmwareSection::capsule("a.inf").version("2"),
             tFirmwareSection("SAFEMODE").version("3"),
             tFirmwareSection::capsule("b.inf").version("4"),
             tFirmwareSection("BIOS").version("5")}),
      kSuccess);
  EXPECT_THAT(versions(), ElementsAre("5", "4", "2", "1", "3"));
}

TEST_F(Parser, RecordsAddedAtEitherEnd_LeaveTheOthersInTheirPlaces) {
  ASSERT_EQ(parse({tFirmwareSection("MARTEN").version("first")}), kSuccess);
  const auto* const first = &records.front();
  ASSERT_EQ(parse(std::vector<tFirmwareSection>(100, tFirmwareSection("BIOS"))), kSuccess);
  ASSERT_EQ(parse(std::vector<tFirmwareSection>(100, tFirmwareSection("MARTEN"))), kSuccess);
  ASSERT_EQ(records.size(), 201u);
  EXPECT_EQ(&records[100], first) << "moving all records for each new one costs their number";
}

TEST_F(Parser, SectionsWithoutCapsuleOfTheBios_HaveNoFileName) {
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").with("TargetFileName", "a.inf"),
                   tFirmwareSection("SAFEMODE", "CapsuleUpdate").with("TargetFileName", "b.inf"),
                   tFirmwareSection("BIOS").with("TargetFileName", "c.inf")}),
            kSuccess);
  for (const auto& record : records) {
    EXPECT_EQ(record.targetFileName, "");
  }
  EXPECT_EQ(records.size(), 3u);
}

// ---- Each failure with its code and line ----

TEST_F(Parser, OtherHeaderVersion_FailsWithImageVersion) {
  for (const std::string_view version : {"2", "0", "0X1", "\"1\"", "x", "-1", "4294967297"}) {
    EXPECT_EQ(parse({tFirmwareSection().with("HeaderVersion", version)}),
              (tFailure{QUENRA_STATUS_IMAGE_VERSION, 164}))
        << version;
  }
  for (const std::string_view version : {"1", " 1", "+1", "1abc", "0x1", "0x1x", "-4294967295"}) {
    EXPECT_EQ(parse({tFirmwareSection().with("HeaderVersion", version)}), kSuccess) << version;
  }
}

TEST_F(Parser, OtherUpdateType_FailsWithInvalidImage) {
  for (const std::string_view type : {"fwupdate", "FWUpdate ", "FWUpdat", "\"\""}) {
    EXPECT_EQ(parse({tFirmwareSection("BIOS", type)}), (tFailure{QUENRA_STATUS_INVALID_IMAGE, 176}))
        << type;
  }
}

TEST_F(Parser, OtherTargetDevice_FailsWithInvalidImage) {
  for (const std::string_view device : {"bios", "BIOS2", " BIOS", "SAFE MODE", "\"\""}) {
    EXPECT_EQ(parse({tFirmwareSection(device)}), (tFailure{QUENRA_STATUS_INVALID_IMAGE, 186}))
        << device;
  }
}

TEST_F(Parser, HeaderEndInALaterSection_FailsWithOutOfMemory) {
  EXPECT_EQ(parse({tFirmwareSection("MARTEN").payload({}).separator(""), tFirmwareSection()}),
            (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 214}));
}

TEST_F(Parser, OtherByteCount_FailsWithInvalidImage) {
  for (const std::string_view count : {"99", "101", "0", "-100", "4294967396", "0x100000064"}) {
    EXPECT_EQ(parse({tFirmwareSection().with("ByteCount", count)}),
              (tFailure{QUENRA_STATUS_INVALID_IMAGE, 241}))
        << count;
  }
}

TEST_F(Parser, HeaderWithoutEnd_FailsWithInvalidImage) {
  EXPECT_EQ(parse({tFirmwareSection().separator("")}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 241}));
}

TEST_F(Parser, HeaderWithoutEnd_HasThePayloadFromTheFourthByteOfTheImage) {
  const std::string image = withCrcOfZero(
      "HeaderVersion::1\r\nUpdateType::FWUpdate\r\nVersion::1\r\nTargetDevice::MARTEN\r\nCRC::0\r\n"
      "ByteCount::NN\r\n",
      3);
  EXPECT_EQ(parse(image), kSuccess);
  EXPECT_EQ(data(0), plainDecode(image.substr(3)));
}

TEST_F(Parser, OtherCrc_FailsWithInvalidImage) {
  const uint32_t crc = firmwareCrc(tFirmwareSection().data());
  EXPECT_EQ(parse({tFirmwareSection().with("CRC", std::to_string(crc + 1))}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 258}));
  EXPECT_EQ(parse({tFirmwareSection().with("CRC", "0")}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 258}));
  // CRC-32C, whose polynomial is the same, of the digits 1 to 9.
  EXPECT_EQ(parse({tFirmwareSection()
                       .payloadText("MTIzNDU2Nzg5")
                       .with("ByteCount", "9")
                       .with("CRC", "0xe3069283")}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 258}));
}

TEST_F(Parser, EmptyNumber_FailsWithInvalidImage) {
  for (const std::string_view key : {"HeaderVersion", "CRC", "ByteCount"}) {
    EXPECT_EQ(parse({tFirmwareSection().with(key, "")}),
              (tFailure{QUENRA_STATUS_INVALID_IMAGE, 339}))
        << key;
  }
}

TEST_F(Parser, MissingNumber_FailsWithOutOfMemory) {
  for (const std::string_view key : {"CRC", "ByteCount"}) {
    EXPECT_EQ(parse({tFirmwareSection().without(key)}),
              (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}))
        << key;
  }
}

TEST_F(Parser, NumberWithoutLineEnd_FailsWithOutOfMemory) {
  const std::string header = "UpdateType::FWUpdate\r\nVersion::1\r\nTargetDevice::BIOS\r\n";
  for (const std::string_view end : {"", "\r", "\n", "\n\r"}) {
    EXPECT_EQ(parse("HeaderVersion::1" + std::string(end)),
              (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}));
    EXPECT_EQ(parse("HeaderVersion::1\r\n" + header + "ByteCount::0\r\nCRC::0" + std::string(end)),
              (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}));
  }
  EXPECT_EQ(parse(std::string("HeaderVersion::1") + '\0' + "\r\n" + header),
            (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}));
}

TEST_F(Parser, MissingText_FailsWithInvalidImage) {
  for (const std::string_view key : {"UpdateType", "Version", "TargetDevice", "TargetFileName"}) {
    EXPECT_EQ(parse({tFirmwareSection::capsule("a").without(key)}),
              (tFailure{QUENRA_STATUS_INVALID_IMAGE, 409}))
        << key;
  }
}

TEST_F(Parser, EmptyText_FailsWithInvalidImage) {
  for (const std::string_view key : {"UpdateType", "Version", "TargetDevice", "TargetFileName"}) {
    EXPECT_EQ(parse({tFirmwareSection::capsule("a").with(key, "")}),
              (tFailure{QUENRA_STATUS_INVALID_IMAGE, 425}))
        << key;
  }
}

TEST_F(Parser, QuoteThatIsNotClosed_FailsWithInvalidImage) {
  for (const std::string_view key : {"UpdateType", "Version", "TargetDevice", "TargetFileName"}) {
    for (const std::string_view text : {"\"", "\"a", "a\""}) {
      EXPECT_EQ(parse({tFirmwareSection::capsule("a").with(key, text)}),
                (tFailure{QUENRA_STATUS_INVALID_IMAGE, 487}))
          << key << text;
    }
  }
}

TEST_F(Parser, FailedSection_LeavesTheRecordsBeforeIt) {
  EXPECT_EQ(parse({tFirmwareSection("BIOS").version("1"), tFirmwareSection("MARTEN").version("2"),
                   tFirmwareSection("BIOS").version("3").with("CRC", "1"),
                   tFirmwareSection("BIOS").version("4")}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 258}));
  EXPECT_THAT(versions(), ElementsAre("1", "2"));
  EXPECT_EQ(data(0), tFirmwareSection().data());
}

TEST_F(Parser, FirstFieldThatCannotBeRead_IsTheOneReported) {
  EXPECT_EQ(parse({tFirmwareSection().with("HeaderVersion", "2").without("UpdateType")}),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 409}));
  EXPECT_EQ(parse({tFirmwareSection("bios").without("CRC").with("ByteCount", "")}),
            (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}));
  EXPECT_TRUE(records.empty());
}

// ---- Beyond the end of a section ----

TEST_F(Parser, KeysThatASectionLacks_AreTakenFromLaterOnes) {
  const tFirmwareSection giver = tFirmwareSection("MARTEN").payload({}).version("given");
  for (const std::string_view key : {"UpdateType", "Version", "TargetDevice", "CRC", "ByteCount"}) {
    std::vector<tFirmwareSection> sections(3, tFirmwareSection("MARTEN").payload({}).without(key));
    sections.push_back(giver);
    EXPECT_EQ(parse(sections), kSuccess) << key;
  }
  EXPECT_EQ(records.size(), 20u);
  EXPECT_EQ(records[4].version, "given");
}

TEST_F(Parser, VersionWithoutLineFeedBeforeIt_IsNotFound) {
  EXPECT_EQ(parse("HeaderVersion::1\r\nUpdateType::FWUpdate\r\n Version::1\r\n"
                  "TargetDevice::BIOS\r\nCRC::0\r\nByteCount::0\r\n\r\n"),
            (tFailure{QUENRA_STATUS_INVALID_IMAGE, 409}));
}

TEST_F(Parser, KeyInsideAPayload_IsFound) {
  tFirmwareSection section("SAFEMODE");
  section.payload({}).without("Version").payloadText("=\nVersion::!\r\n");
  const size_t decoded = plainDecode("=\nVersion::!\r\n").size();
  EXPECT_EQ(parse({section.with("ByteCount", std::to_string(decoded))
                       .with("CRC", std::to_string(firmwareCrc(plainDecode("Version"))))}),
            kSuccess);
  EXPECT_THAT(versions(), ElementsAre("!"));
}

TEST_F(Parser, HeaderAfterAnEarlyEmptyLine_IsHeaderAndPayload) {
  const std::string start = "HeaderVersion::1\r\n\r\n";
  const std::string image =
      withCrcOfZero(start +
                        "UpdateType::FWUpdate\r\nVersion::1\r\nTargetDevice::MARTEN\r\nCRC::0\r\n"
                        "ByteCount::NN\r\n",
                    start.size());
  EXPECT_EQ(parse(image), kSuccess);
  EXPECT_EQ(data(0), plainDecode(image.substr(start.size())));
}

TEST_F(Parser, TextWithoutLineEnd_GoesToTheEndOfTheText) {
  const std::string header =
      "HeaderVersion::1\r\nUpdateType::FWUpdate\r\nTargetDevice::MARTEN\r\nCRC::0\r\nByteCount::0";
  // The payload ends with the image, so the version consists of characters that decoding skips.
  EXPECT_EQ(parse(header + "\r\n\r\n\nVersion::"), (tFailure{QUENRA_STATUS_INVALID_IMAGE, 425}));
  const auto payload = plainDecode("Version");
  const std::string counted =
      "HeaderVersion::1\r\nUpdateType::FWUpdate\r\nTargetDevice::MARTEN\r\n"
      "CRC::" +
      std::to_string(firmwareCrc(payload)) + "\r\nByteCount::" + std::to_string(payload.size());
  EXPECT_EQ(parse(counted + "\r\n\r\n\nVersion::!?\n"), kSuccess);
  EXPECT_EQ(parse(counted + "\r\n\r\n\nVersion::!?\n" + '\0' + "\r\n"), kSuccess);
  EXPECT_THAT(versions(), ElementsAre("!?\n", "!?\n"));
}

TEST_F(Parser, ThousandsOfSectionsThatShareOneKey_ParseInOneSweep) {
  std::vector<tFirmwareSection> sections(20000,
                                         tFirmwareSection("MARTEN").payload({}).without("CRC"));
  sections.push_back(tFirmwareSection("MARTEN").payload({}));
  EXPECT_EQ(parse(sections), kSuccess);
  EXPECT_EQ(records.size(), 20001u);
}

TEST_F(Parser, TextFullOfColons_IsSearchedToItsEnd) {
  EXPECT_EQ(parse(std::string(100000, ':') + "HeaderVersion:" + std::string(1000, ':')),
            (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 351}));
}

// ---- Against the plain implementation ----

// Cuts, repeats, joins and damages valid sections.
std::string damagedImage(std::mt19937& random) {
  const auto below = [&random](size_t limit) { return random() % limit; };
  std::vector<tFirmwareSection> sections;
  const char* const devices[] = {"BIOS", "MARTEN", "SAFEMODE", "\"BIOS\"", "x"};
  for (size_t i = below(4); i > 0; --i) {
    tFirmwareSection section(devices[below(5)], below(3) == 0 ? "CapsuleUpdate" : "FWUpdate");
    section.with("TargetFileName", below(2) == 0 ? "a.inf" : "b\"c\"").version(std::to_string(i));
    section.payload(firmwareBytes(below(100)), below(80));
    if (below(8) == 0) {
      section.separator("");
    }
    sections.push_back(section);
  }
  std::string image = firmwareImage(sections);
  for (size_t damage = below(4); damage > 0 && !image.empty(); --damage) {
    const size_t place = below(image.size());
    constexpr std::string_view kBytes("\0\r\n:\"0x", 7);
    switch (below(3)) {
      case 0:
        image[place] = kBytes[below(kBytes.size())];
        break;
      case 1:
        image.erase(place, below(40));
        break;
      default:
        image.insert(below(image.size()), image.substr(place, below(60)));
    }
  }
  return image;
}

TEST_F(Parser, DamagedImages_ParseAsThePlainRule) {
  std::mt19937 random(3);
  for (int round = 0; round < 20000; ++round) {
    const std::string image = damagedImage(random);
    const tPlainImage expected = plainParse(image);
    ASSERT_EQ(parse(image), (tFailure{expected.code, expected.line})) << image;
    ASSERT_EQ(records.size(), expected.records.size()) << image;
    for (size_t i = 0; i < records.size(); ++i) {
      const tPlainRecord record{data(i), records[i].targetDevice, records[i].version,
                                records[i].targetFileName};
      ASSERT_EQ(record, expected.records[i]) << image;
    }
    freePayloads(records);
    records.clear();
  }
}

}  // namespace
}  // namespace nTests
