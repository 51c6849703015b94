// The fixture of tests of complete updates on the fake Windows.
#ifndef TESTS_COMPONENT_UPDATE_UPDATETEST_H
#define TESTS_COMPONENT_UPDATE_UPDATETEST_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/component/session/sessiontest.h"

namespace nTests {

inline constexpr const char* kDriverStoreTool = "C:\\Windows\\Sysnative\\pnputil.exe";
inline constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;
inline constexpr char kMarkerBefore[] = "1.4.0f7";
inline constexpr char kMarkerAfter[] = "0.0.0f0";

// An image with one section of every kind.
inline std::string completeImage() {
  return firmwareImage(
      {tFirmwareSection("MARTEN").version("9.0.0f0").payload(firmwareBytes(2000, 2)),
       tFirmwareSection("SAFEMODE").payload(firmwareBytes(30, 3)),
       tFirmwareSection::capsule("driver.inf").payload(firmwareBytes(50, 4)),
       tFirmwareSection("BIOS").version("9.0.0f0").payload(firmwareBytes(100, 1))});
}

// A machine that accepts firmware, and a temporary directory for each test.
class UpdateTest : public SessionTest {
  tTemporaryFolder folder_;

 protected:
  void SetUp() override {
    SessionTest::SetUp();
    useEligibility(1, 0);
    nFakeWindows::programs().install(kDriverStoreTool);
    before_ = std::getenv("TMPDIR") == nullptr ? "" : std::getenv("TMPDIR");
    setenv("TMPDIR", temporary.c_str(), 1);
  }
  void TearDown() override {
    if (before_.empty()) {
      unsetenv("TMPDIR");
    } else {
      setenv("TMPDIR", before_.c_str(), 1);
    }
    SessionTest::TearDown();
  }

  static void useEligibility(uint8_t updatable, uint8_t protection) {
    tReferenceTable table;
    table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, updatable).byte(5, protection);
    useTable(table);
  }
  static void setMarker(const std::string& text) {
    nSimulator::tSimulatedMachine machine;
    machine.setAttributeText(kSimulatorInterfaceMarten, kMarker, text);
    machine.allowWrites(kSimulatorInterfaceMarten, kMarker);
  }
  // Without the NUL that it may have.
  static std::string marker() {
    char text[64] = {};
    uint64_t size = sizeof text;
    uint64_t handle = 0;
    EXPECT_EQ(QUENRA_openController(&handle), 0);
    EXPECT_EQ(QUENRA_getAttributeUTF8(handle, kMarker | QUENRA_SELECTOR_MARTEN, text, &size), 0);
    QUENRA_closeController(handle);
    return text;
  }
  // Through the export, with a session of its own.
  static int32_t update(const std::string& image, uint32_t options = 1) {
    uint64_t handle = 0;
    const int32_t opened = QUENRA_openController(&handle);
    if (opened < 0) {
      return opened;
    }
    const int32_t code = QUENRA_updateFirmware2(handle, image.data(), image.size(), options);
    QUENRA_closeController(handle);
    return code;
  }

  const std::filesystem::path temporary = folder_.path();

 private:
  std::string before_;
};

}  // namespace nTests

#endif
