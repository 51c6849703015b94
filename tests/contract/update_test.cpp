#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "protocol/controllerrequests.h"
#include "sha256/sha256.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/contract/contracttest.h"
#include "tests/contract/updateworld.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;
constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;
constexpr uint32_t kMartenVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION + QUENRA_SELECTOR_MARTEN;
constexpr uint32_t kCompare = 0;
constexpr uint32_t kEverything = 1;

std::vector<uint8_t> sha256Of(const std::vector<uint8_t>& bytes) {
  tSha256 hash;
  std::vector<uint8_t> result(SHA256_SIZE);
  sha256Start(&hash);
  sha256Add(&hash, bytes.data(), static_cast<uint32_t>(bytes.size()));
  sha256Finish(&hash, result.data());
  return result;
}

tFirmwareSection bios(const std::string& version = "9.0.0f1") {
  return tFirmwareSection("BIOS").version(version).payload(firmwareBytes(1000, 1));
}
tFirmwareSection marten(const std::string& version = "9.0.0f1") {
  return tFirmwareSection("MARTEN").version(version).payload(firmwareBytes(70000, 2));
}
tFirmwareSection safeMode() {
  return tFirmwareSection("SAFEMODE").payload(firmwareBytes(300, 3));
}
tFirmwareSection driverPackage(const std::string& name = "driver.inf") {
  return tFirmwareSection::capsule(name).payload(firmwareBytes(500, 4));
}

std::vector<uint8_t> contentsOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> contents{std::istreambuf_iterator<char>(stream), {}};
  return {contents.begin(), contents.end()};
}

// The form of a random UUID: xxxxxxxx-xxxx-4xxx-[89ab]xxx-xxxxxxxxxxxx.
bool isRandomUuid(const std::string& text) {
  const std::string form = "hhhhhhhh-hhhh-4hhh-vhhh-hhhhhhhhhhhh";
  return text.size() == form.size() &&
         std::equal(text.begin(), text.end(), form.begin(), [](char character, char expected) {
           const std::string_view allowed = expected == 'h'   ? "0123456789abcdef"
                                            : expected == 'v' ? "89ab"
                                            : expected == '4' ? "4"
                                                              : "-";
           return allowed.find(character) != std::string_view::npos;
         });
}

// A payload that an interface received.
struct tReceived {
  uint32_t interfaceKind;
  std::vector<uint8_t> sha256;
  bool operator==(const tReceived&) const = default;
};

class Update : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    resetUpdateWorld();
    machine().clearFirmware();
    makeUpdatable(1, 0);
    useTemporaryDirectory(temporary_.path());
    open();
    machine().clearLog();
  }
  void TearDown() override {
    useTemporaryDirectory(temporary_.path().parent_path());
    resetUpdateWorld();
    ContractTest::TearDown();
  }

  // Sets the bytes that decide whether the machine accepts firmware, and a BIOS version of 1.2.3f4.
  void makeUpdatable(uint8_t updatable, uint8_t protection) {
    tReferenceTable table;
    table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, updatable).byte(5, protection);
    table.structure(0x00) = tSmbiosStructure(0x00, 0x18).text(5, "1.2.3f4");
    useTable(table);
  }
  void reopenWith(uint8_t updatable, uint8_t protection) {
    QUENRA_closeController(QUENRA_HANDLE);
    makeUpdatable(updatable, protection);
    open();
  }
  static int32_t update(const std::vector<tFirmwareSection>& sections,
                        uint32_t flags = kEverything) {
    const std::string image = firmwareImage(sections);
    return QUENRA_updateFirmware2(QUENRA_HANDLE, image.data(), image.size(), flags);
  }
  // The machine keeps this version in its marker, which an update overwrites.
  void installMartenVersion(const std::string& version) {
    machine().setAttributeText(kMarten, kMarker, version);
    machine().allowWrites(kMarten, kMarker);
  }
  std::vector<tReceived> received() {
    std::vector<tReceived> all;
    for (const tSimulatorPayload& payload : machine().firmware()) {
      all.push_back(
          {payload.interfaceKind, {std::begin(payload.sha256), std::end(payload.sha256)}});
    }
    return all;
  }
  static tReceived to(tSimulatorInterface kind, const tFirmwareSection& section) {
    return {kind, sha256Of(section.data())};
  }
  // The sizes of the texts written to the version marker, in order.
  std::vector<std::string> markers() {
    std::vector<std::string> texts;
    for (const tSimulatorLogEntry& entry : requests(REQUEST_SET_ATTRIBUTE)) {
      uint32_t attribute = 0;
      int32_t size = 0;
      std::memcpy(&attribute, entry.input, sizeof attribute);
      std::memcpy(&size, entry.input + 16, sizeof size);
      EXPECT_EQ(attribute, kMarker);
      texts.push_back(std::to_string(size) + " bytes");
    }
    return texts;
  }
  // The attributes that were read from the driver, in order.
  std::vector<uint32_t> attributesRead() {
    std::vector<uint32_t> attributes;
    for (const tSimulatorLogEntry& entry : requests(REQUEST_GET_ATTRIBUTE)) {
      std::memcpy(&attributes.emplace_back(), entry.input, sizeof(uint32_t));
    }
    return attributes;
  }
  // An update leaves a text without a NUL, which ends at its size.
  static std::string installedMarker() {
    const tTextRead read = readText(kMarker | QUENRA_SELECTOR_MARTEN);
    return read.text.substr(0, read.size);
  }
  // The files in the folders of all updates, without the folders.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(temporary_.path())) {
      if (entry.is_regular_file()) {
        names.push_back(entry.path().filename().string());
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  std::vector<fs::path> folders() const {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::directory_iterator(temporary_.path())) {
      paths.push_back(entry.path());
    }
    return paths;
  }
  void failSends(tSimulatorInterface kind, int32_t code) {
    tSimulatorScript script{};
    script.interfaceKind = kind;
    script.requestCode =
        kind == kController ? REQUEST_CONTROLLER_SEND_COMMAND : REQUEST_MARTEN_SEND_COMMAND;
    script.action = kSimulatorActionAnswerCode;
    script.driverStatus = code;
    machine().addScript(script);
  }

  const tTemporaryFolder temporary_;
};

// ---- Destinations ----

TEST_F(Update, EveryKindOfSection_IsInstalledAtItsDestination) {
  const std::vector<tFirmwareSection> sections{marten(), safeMode(), driverPackage(), bios()};
  EXPECT_EQ(update(sections), 0);
  // Driver packages and the BIOS come first, the later section before the earlier one.
  EXPECT_THAT(received(), ElementsAre(to(kController, bios()), to(kMarten, marten())));
  EXPECT_THAT(files(), ElementsAre("driver.inf"));
  ASSERT_THAT(folders(), SizeIs(1));
  const fs::path file = folders()[0] / "driver.inf";
  EXPECT_EQ(contentsOf(file), driverPackage().data());
  EXPECT_THAT(packageCommandLines(), ElementsAre(" /add-driver " + file.string() + " /install"));
  EXPECT_EQ(installedMarker(), "0.0.0f0");
}

TEST_F(Update, Folder_HasARandomNameInItsCanonicalForm) {
  EXPECT_EQ(update({driverPackage()}), 0);
  EXPECT_EQ(update({driverPackage()}), 0);
  ASSERT_THAT(folders(), SizeIs(2));
  EXPECT_NE(folders()[0], folders()[1]);
  for (const fs::path& folder : folders()) {
    EXPECT_TRUE(isRandomUuid(folder.filename().string())) << folder;
  }
}

TEST_F(Update, SafeModeAlone_CreatesNoFileAndSendsNothing) {
  EXPECT_EQ(update({safeMode()}), 0);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
  EXPECT_THAT(packageCommandLines(), IsEmpty());
}

TEST_F(Update, BiosCapsule_IsWrittenToItsFileOnly) {
  EXPECT_EQ(update({tFirmwareSection::capsule("bios.cap")}), 0);
  EXPECT_THAT(files(), ElementsAre("bios.cap"));
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(packageCommandLines(), IsEmpty());
}

TEST_F(Update, ImageWithoutSections_StillMarksTheMarten) {
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, "", 0, kEverything), 0);
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, nullptr, 0, kEverything), 0);
  EXPECT_THAT(markers(), ElementsAre("7 bytes", "7 bytes"));
}

TEST_F(Update, NullImageOfAnySize_IsAnImageWithoutSections) {
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, nullptr, ~uint64_t{0}), 0);
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, nullptr, 1, kEverything), 0);
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(Update, ImageThatWrapsAroundTheAddressSpace_FailsWithInvalidParameterAndChangesNothing) {
  const std::string image = firmwareImage({bios(), driverPackage()});
  constexpr uint64_t kEverySize = ~uint64_t{0};
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, image.data(), kEverySize),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, image.data(), kEverySize, kCompare),
            QUENRA_STATUS_INVALID_PARAMETER);
  const auto* const lastByte = reinterpret_cast<const void*>(UINTPTR_MAX);
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, lastByte, 2), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, ImageOf10MebibytesWithoutSections_IsAnImageWithoutSections) {
  const std::string image(size_t{10} * 1024 * 1024, 'x');
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, image.data(), image.size()), 0);
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, image.data(), image.size(), kEverything), 0);
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(Update, MisalignedImage_IsReadLikeAnyOther) {
  const std::string image = "x" + firmwareImage({bios("0.0.0d0")});
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, image.data() + 1, image.size() - 1), 0);
  EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, image.data() + 1, image.size() - 1, kEverything),
            0);
  EXPECT_THAT(received(), SizeIs(2));
}

TEST_F(Update, PlainExport_UpdatesEverything) {
  const std::string image = firmwareImage({bios("0.0.0d0"), marten("0.0.0d0")});
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, image.data(), image.size()), 0);
  EXPECT_THAT(received(), SizeIs(2));
}

TEST_F(Update, FileNameWithSubfolder_CannotBeOpened) {
  EXPECT_EQ(update({bios(), tFirmwareSection::capsule("missing/driver.inf")}),
            QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(folders(), IsEmpty()) << "the folder is removed";
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_EQ(installedMarker(), "1.4.0f7") << "and the marker is as it was";
}

TEST_F(Update, FileNameAboveItsFolder_IsJoinedAsItIs) {
  EXPECT_EQ(update({tFirmwareSection::capsule("../beside.cap")}), 0);
  EXPECT_TRUE(fs::exists(temporary_.path() / "beside.cap"));
}

// ---- Versions ----

TEST_F(Update, BiosThatIsCurrent_IsSkippedWhenVersionsAreCompared) {
  for (const char* version : {"1.2.3f4", "1.2.3f3", "1.2.2f9", "0.9.9f1", "unreadable"}) {
    machine().clearFirmware();
    EXPECT_EQ(update({bios(version)}, kCompare), 0) << version;
    EXPECT_THAT(received(), IsEmpty()) << version;
  }
  for (const char* version : {"1.2.3f5", "1.2.4d0", "1.3.0a0", "2.0.0d0"}) {
    machine().clearFirmware();
    EXPECT_EQ(update({bios(version)}, kCompare), 0) << version;
    EXPECT_THAT(received(), ElementsAre(to(kController, bios()))) << version;
  }
}

TEST_F(Update, MartenThatIsCurrent_IsSkippedWhenVersionsAreCompared) {
  EXPECT_EQ(update({marten("1.4.0f7"), bios()}, kCompare), 0);
  EXPECT_THAT(received(), ElementsAre(to(kController, bios())));
  installMartenVersion("1.4.0f7");
  machine().clearFirmware();
  EXPECT_EQ(update({marten("1.4.0f8")}, kCompare), 0);
  EXPECT_THAT(received(), ElementsAre(to(kMarten, marten())));
}

TEST_F(Update, BothCurrent_WritesNothingAtAll) {
  EXPECT_EQ(update({bios("1.0.0f0"), marten("1.0.0f0"), driverPackage()}, kCompare), 0);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, BiosCurrentAndNoMartenSection_DoesTheRest) {
  EXPECT_EQ(update({bios("1.2.3f4"), driverPackage()}, kCompare), 0);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), ElementsAre("7 bytes"));
  EXPECT_THAT(packageCommandLines(), SizeIs(1));
}

TEST_F(Update, OneCurrentBiosSection_SkipsAllBiosSections) {
  EXPECT_EQ(update({bios("1.2.3f4"), bios()}, kCompare), 0);
  EXPECT_EQ(update({bios(), bios("1.2.3f4")}, kCompare), 0);
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(Update, OneCurrentMartenSection_SkipsAllMartenSections) {
  EXPECT_EQ(update({marten("1.4.0f7"), marten(), bios()}, kCompare), 0);
  installMartenVersion("1.4.0f7");
  EXPECT_EQ(update({marten(), marten("1.4.0f7"), bios()}, kCompare), 0);
  EXPECT_THAT(received(), ElementsAre(to(kController, bios()), to(kController, bios())));
}

TEST_F(Update, InstalledMartenVersion_IsReadFromItsOwnAttribute) {
  EXPECT_EQ(update({marten()}, kCompare), 0);
  EXPECT_THAT(attributesRead(), ElementsAre(kMartenVersion, kMartenVersion, kMarker, kMarker));
}

TEST_F(Update, WithoutComparison_DoesNotReadTheInstalledMartenVersion) {
  EXPECT_EQ(update({marten()}, kEverything), 0);
  EXPECT_THAT(attributesRead(), ElementsAre(kMarker, kMarker));
}

// ---- Refused updates ----

TEST_F(Update, EncryptedDrive_FailsWithDriveProtected) {
  encryptDrive();
  EXPECT_EQ(update({bios()}), QUENRA_STATUS_DRIVE_PROTECTED);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
}

TEST_F(Update, EncryptedDriveOfAnIneligibleMachine_FailsWithDriveProtected) {
  encryptDrive();
  reopenWith(0, 2);
  EXPECT_EQ(update({bios()}), QUENRA_STATUS_DRIVE_PROTECTED);
}

TEST_F(Update, WithoutRandomBytes_FailsBeforeAnyEffect) {
  for (const tRandomFault& fault : randomFaults()) {
    failRandom(fault.call, fault.error);
    EXPECT_EQ(update({bios(), driverPackage()}), QUENRA_STATUS_UPDATE_ENVIRONMENT) << fault.call;
    failRandom(fault.call, fault.shortMemory);
    EXPECT_EQ(update({bios(), driverPackage()}), QUENRA_STATUS_OUT_OF_MEMORY) << fault.call;
    resetUpdateWorld();
  }
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
  EXPECT_EQ(update({bios()}), 0) << "once there are random bytes again";
}

TEST_F(Update, WithoutATemporaryDirectory_FailsBeforeAnyEffect) {
  useTemporaryDirectory(temporary_.path() / "missing");
  EXPECT_EQ(update({bios(), driverPackage()}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, UnknownEncryption_FailsWithUpdateEnvironment) {
  breakEncryptionTest();
  EXPECT_EQ(update({bios()}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(Update, MachineThatAcceptsNoFirmware_FailsWithNotSupported) {
  for (const auto& [updatable, protection] :
       {std::pair<uint8_t, uint8_t>{0, 0}, {1, 2}, {255, 255}}) {
    reopenWith(updatable, protection);
    EXPECT_EQ(update({bios()}), QUENRA_STATUS_NOT_SUPPORTED);
  }
  reopenWith(255, 1);
  EXPECT_EQ(update({bios()}), 0);
}

TEST_F(Update, MachineWithoutEligibilityBytes_FailsWithNoController) {
  QUENRA_closeController(QUENRA_HANDLE);
  tReferenceTable table;
  table.remove(0x9E);
  useTable(table);
  open();
  EXPECT_EQ(update({bios()}), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Update, UnknownOptions_FailBeforeTheImageIsRead) {
  constexpr char kMalformed[] = "HeaderVersion::9";
  for (const uint32_t options : {2u, 0xFFFFFFFFu}) {
    EXPECT_EQ(QUENRA_updateFirmware2(QUENRA_HANDLE, kMalformed, sizeof kMalformed, options),
              QUENRA_STATUS_INVALID_VALUE);
  }
}

TEST_F(Update, MalformedImage_ChangesNothing) {
  EXPECT_EQ(update({bios(), marten().with("CRC", "0x12345678")}), QUENRA_STATUS_INVALID_IMAGE);
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, MartenSectionWithoutAMarten_IsRejectedForAllOptions) {
  QUENRA_closeController(QUENRA_HANDLE);
  usePresence(1, 0);
  open();
  for (const uint32_t options : {kCompare, kEverything}) {
    EXPECT_EQ(update({bios(), marten()}, options), QUENRA_STATUS_INVALID_IMAGE);
    EXPECT_THAT(received(), IsEmpty());
  }
  EXPECT_EQ(update({bios()}), 0) << "there is no marker then";
  EXPECT_THAT(received(), ElementsAre(to(kController, bios())));
}

TEST_F(Update, BadHandle_IsReportedFirst) {
  EXPECT_EQ(QUENRA_updateFirmware(0, nullptr, 0), QUENRA_STATUS_INVALID_HANDLE);
  EXPECT_EQ(QUENRA_updateFirmware2(7, nullptr, 0, 9), QUENRA_STATUS_INVALID_HANDLE);
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, nullptr, 0), QUENRA_STATUS_INVALID_HANDLE);
}

// ---- Failures during an update ----

TEST_F(Update, MarkerThatCannotBeRead_StopsTheUpdateAndIsUntouched) {
  machine().removeAttribute(kMarten, kMarker);
  EXPECT_EQ(update({bios()}), QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(markers(), IsEmpty());
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(Update, MarkerThatCannotBeWritten_StopsTheUpdateAndIsRestored) {
  machine().refuseWrites(kMarten, kMarker);
  EXPECT_EQ(update({bios(), driverPackage()}), QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(markers(), ElementsAre("7 bytes", "7 bytes")) << "1.4.0f7 has as many characters";
  EXPECT_THAT(received(), IsEmpty());
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, FirmwareThatTheDriverRejects_FailsWithItsCodeAndRestoresTheMarker) {
  failSends(kController, -123);
  EXPECT_EQ(update({bios(), marten()}), -123);
  EXPECT_THAT(received(), IsEmpty()) << "no later payload is sent";
  EXPECT_EQ(installedMarker(), "1.4.0f7");
}

TEST_F(Update, MartenFirmwareThatTheDriverRejects_RestoresTheMarkerAfterTheBios) {
  failSends(kMarten, -124);
  EXPECT_EQ(update({bios(), marten()}), -124);
  EXPECT_THAT(received(), ElementsAre(to(kController, bios())));
  EXPECT_EQ(installedMarker(), "1.4.0f7");
}

TEST_F(Update, PayloadThatTheDriverRejects_LeavesTheFilesOfTheImage) {
  failSends(kMarten, -124);
  EXPECT_EQ(update({marten(), driverPackage(), tFirmwareSection::capsule("bios.cap")}), -124);
  EXPECT_THAT(files(), ElementsAre("bios.cap", "driver.inf"));
}

TEST_F(Update, ExistingFile_IsReplacedCompletely) {
  const fs::path file = temporary_.path() / "beside.cap";
  std::ofstream(file) << std::string(10000, 'x');
  const tFirmwareSection capsule = tFirmwareSection::capsule("../beside.cap");
  EXPECT_EQ(update({capsule}), 0);
  EXPECT_EQ(contentsOf(file), capsule.data());
}

TEST_F(Update, FileThatCannotBeWrittenToItsEnd_IsNotReported) {
  // The small one fails when its stream is closed, the large one while it is written.
  for (const size_t size : {size_t{100}, size_t{1} << 20}) {
    EXPECT_EQ(update({tFirmwareSection::capsule(nameOfFullDevice()).payload(firmwareBytes(size)),
                      marten(), tFirmwareSection::capsule("bios.cap")}),
              0);
    EXPECT_THAT(received(), ElementsAre(to(kMarten, marten())));
    EXPECT_THAT(files(), testing::Contains("bios.cap"));
    EXPECT_EQ(installedMarker(), "0.0.0f0");
    machine().clearFirmware();
  }
}

TEST_F(Update, WarningOfTheDriver_IsKeptAndTheUpdateContinues) {
  tSimulatorScript warning{};
  warning.interfaceKind = kController;
  warning.requestCode = REQUEST_CONTROLLER_SEND_COMMAND;
  warning.action = kSimulatorActionAddCode;
  warning.driverStatus = 5;
  machine().addScript(warning);
  EXPECT_EQ(update({bios(), marten()}), 5);
  EXPECT_THAT(received(), SizeIs(2));
  EXPECT_EQ(installedMarker(), "0.0.0f0");
}

// ---- The folder and other processes ----

TEST_F(Update, CleanUp_LeavesTheTargetsOfLinksInTheFolder) {
  const fs::path target = temporary_.path() / "target";
  const fs::path file = target / "of others.txt";
  fs::create_directory(target);
  std::ofstream(file) << "kept";
  const fs::path root = temporary_.path() / "updates";
  fs::create_directory(root);
  useTemporaryDirectory(root);
  std::vector<fs::path> links;
  loseTool([&] {
    const fs::path folder = fs::directory_iterator(root)->path();
    fs::create_directory(folder / "nested");
    links = {folder / "to folder", folder / "to file", folder / "nested" / "to folder"};
    plantLink(links[0], target);
    plantLink(links[1], file);
    plantLink(links[2], target);
  });
  EXPECT_EQ(update({driverPackage()}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(links, SizeIs(3));
  EXPECT_THAT(contentsOf(file), ElementsAre('k', 'e', 'p', 't'));
  if (removesLinks()) {
    EXPECT_TRUE(fs::is_empty(root));
  }
  for (const fs::path& link : removesLinks() ? std::vector<fs::path>{} : links) {
    removeLink(link);
  }
}

TEST_F(Update, CleanUpOfAFolderThatWasReplacedByALink_LeavesItsTarget) {
  const fs::path target = temporary_.path() / "target";
  const fs::path file = target / "of others.txt";
  fs::create_directory(target);
  std::ofstream(file) << "kept";
  const fs::path root = temporary_.path() / "updates";
  fs::create_directory(root);
  useTemporaryDirectory(root);
  fs::path folder;
  loseTool([&] {
    folder = fs::directory_iterator(root)->path();
    moveAside(folder, temporary_.path() / "moved");
    plantLink(folder, target);
  });
  EXPECT_EQ(update({driverPackage()}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(contentsOf(file), ElementsAre('k', 'e', 'p', 't'));
  if (removesLinks()) {
    EXPECT_TRUE(fs::is_empty(root));
  } else {
    removeLink(folder);
  }
}

TEST_F(Update, CleanUp_RemovesReadOnlyFiles) {
  loseTool([this] {
    const fs::path file = folders().at(0) / "read-only";
    std::ofstream(file) << "a file";
    fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
  });
  EXPECT_EQ(update({driverPackage()}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(Update, FilesAndFolder_AreHeldUntilTheToolHasEnded) {
  unsigned starts = 0;
  fs::path folder;
  beforeToolStart([&] {
    ++starts;
    folder = folders().at(0);
    for (const char* name : {"driver.inf", "bios.cap"}) {
      EXPECT_TRUE(canOpen(folder / name, tOpening::reading)) << name;
      EXPECT_FALSE(canOpen(folder / name, tOpening::writing)) << name;
      EXPECT_FALSE(canOpen(folder / name, tOpening::removing)) << name;
    }
    EXPECT_TRUE(canOpen(folder, tOpening::reading));
    EXPECT_FALSE(canOpen(folder, tOpening::removing));
  });
  EXPECT_EQ(update({driverPackage(), tFirmwareSection::capsule("bios.cap")}), 0);
  EXPECT_EQ(starts, 1u);
  for (const fs::path& path : {folder, folder / "driver.inf", folder / "bios.cap"}) {
    EXPECT_TRUE(canOpen(path, tOpening::removing)) << path;
  }
}

TEST_F(Update, TwoSectionsOfOneFileName_LeaveTheLaterPayloadAndHoldEveryFile) {
  const tFirmwareSection later = tFirmwareSection::capsule("bios.cap");
  unsigned starts = 0;
  beforeToolStart([&] {
    ++starts;
    for (const char* name : {"driver.inf", "bios.cap", "other.cap", "last.cap"}) {
      EXPECT_FALSE(canOpen(folders().at(0) / name, tOpening::writing)) << name;
    }
  });
  EXPECT_EQ(
      update(
          {driverPackage(), tFirmwareSection::capsule("bios.cap").payload(firmwareBytes(9000, 7)),
           tFirmwareSection::capsule("other.cap"), later, tFirmwareSection::capsule("last.cap")}),
      0);
  EXPECT_EQ(starts, 1u);
  EXPECT_THAT(files(), ElementsAre("bios.cap", "driver.inf", "last.cap", "other.cap"));
  EXPECT_EQ(contentsOf(folders().at(0) / "bios.cap"), later.data());
}

TEST_F(Update, TemporaryDirectoryOutsideTheCodePage_FailsAndWritesIntoNoOther) {
  // A conversion to the code page would map the first name to the second, its best fit.
  const fs::path outside = temporary_.path() / fs::path(u"\u0141");
  const fs::path bestFit = temporary_.path() / "L";
  fs::create_directory(outside);
  fs::create_directory(bestFit);
  useTemporaryDirectory(outside);
  EXPECT_EQ(update({tFirmwareSection::capsule("../x.cap")}), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_THAT(files(), IsEmpty());
  EXPECT_EQ(installedMarker(), "1.4.0f7");
}

TEST_F(Update, SavedMarker_IsReadWithTwoCalls) {
  EXPECT_EQ(update({bios()}), 0);
  const std::vector<tSimulatorLogEntry> reads = requests(REQUEST_GET_ATTRIBUTE);
  ASSERT_THAT(reads, SizeIs(2));
  uint32_t sizes[2] = {};
  std::memcpy(&sizes[0], reads[0].input + 16, 4);
  std::memcpy(&sizes[1], reads[1].input + 16, 4);
  EXPECT_EQ(sizes[0], 0u);
  EXPECT_EQ(sizes[1], 8u) << "the text and its NUL";
}

}  // namespace
}  // namespace nTests
