#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/capture/recordedmachine.h"
#include "tools/capture/capturefile.h"
#include "tools/quenra/capture/capturing.h"
#include "tools/quenra/capture/treplayedmachine.h"
#include "tools/quenra/reading/tcontroller.h"

namespace nTests {
namespace {

using nCapture::tMachineRecord;
using nCommandLine::deviationsOf;
using nCommandLine::tController;
using nCommandLine::tReplayedLibrary;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- Capture of a replayed machine ----

TEST(Capture, OfAReplayedMachine_DiffersInDurationsOnly) {
  std::mt19937 random(11);
  for (int i = 0; i < 100; ++i) {
    const tMachineRecord first = captured(randomMachine(random));
    const tMachineRecord second = captured(first);
    ASSERT_EQ(textWithoutDurations(second), textWithoutDurations(first)) << "machine " << i;
  }
}

TEST(Capture, ReplayedByTheLibrarysCode_GivesTheRecordedResults) {
  std::mt19937 random(13);
  for (int i = 0; i < 100; ++i) {
    const tMachineRecord record = captured(randomMachine(random));
    ASSERT_THAT(deviationsOf(record), IsEmpty()) << nCapture::captureText(record);
  }
}

TEST(Capture, ReferenceMachine_RecordsItsReadings) {
  const tMachineRecord record = captured(referenceMachine());
  EXPECT_EQ(record.opening.code, QUENRA_STATUS_SUCCESS);
  EXPECT_GT(record.readings.size(), 60u);
  EXPECT_EQ(record.controller.attributes.size(), 3u);
}

TEST(Capture, ChangedReading_IsNamedAsDeviation) {
  tMachineRecord record = captured(referenceMachine());
  record.readings.at(1).value = std::string("another");
  EXPECT_THAT(deviationsOf(record), ElementsAre(record.readings.at(1).name));
}

TEST(Capture, MissingReading_IsADeviation) {
  tMachineRecord record = captured(referenceMachine());
  record.readings.pop_back();
  EXPECT_EQ(deviationsOf(record).size(), 1u);
}

TEST(Capture, ClosesTheDriver) {
  const tMachineRecord machine = referenceMachine();
  tRecordDriver driver(machine);
  EXPECT_EQ(driver.openController(), 0);
  EXPECT_TRUE(driver.isOpen);
  EXPECT_THAT(deviationsOf(captured(machine)), IsEmpty());
}

// ---- Replay ----

TEST(Replay, InterfaceThatCouldNotBeOpened_FailsWithTheRecordedCode) {
  tMachineRecord record = referenceMachine();
  record.controller.opening->code = QUENRA_STATUS_ACCESS_DENIED;
  record.opening.code = QUENRA_STATUS_ACCESS_DENIED;
  tReplayedLibrary library(record);
  EXPECT_EQ(tController(library).code(), QUENRA_STATUS_ACCESS_DENIED);
}

TEST(Replay, TableOfAnUnsupportedMachine_FailsWithNoController) {
  tMachineRecord record = referenceMachine();
  record.handover.table.clear();
  record.handover.query->tableSize = 0;
  record.handover.values->tableSize = 0;
  tReplayedLibrary library(record);
  EXPECT_EQ(tController(library).code(), QUENRA_STATUS_NO_CONTROLLER);
}

TEST(Replay, Writes_AreRefused) {
  const tMachineRecord record = referenceMachine();
  tReplayedLibrary library(record);
  const tController controller(library);
  ASSERT_EQ(controller.code(), QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(controller.write({QUENRA_ATTRIBUTE_DRIVER_SETTING_1}, uint32_t{1}),
            QUENRA_STATUS_REQUEST_NOT_SUPPORTED);
  EXPECT_EQ(controller.write({QUENRA_ATTRIBUTE_PRODUCT_NAME}, std::string("x")),
            QUENRA_STATUS_REQUEST_NOT_SUPPORTED);
  EXPECT_EQ(controller.update("image", false), QUENRA_STATUS_REQUEST_NOT_SUPPORTED);
}

TEST(Replay, ReadsBeforeOpening_FailAsTheLibraryDoes) {
  const tMachineRecord record = referenceMachine();
  tReplayedLibrary library(record);
  uint32_t value = 0;
  EXPECT_EQ(library.getAttributeU32(0, QUENRA_ATTRIBUTE_SLOT_COUNT, &value),
            QUENRA_STATUS_INVALID_HANDLE);
  EXPECT_EQ(library.performSelfTest(0), QUENRA_STATUS_INVALID_HANDLE);
}

TEST(Replay, TextLongerThanTheFirstBuffer_IsReadCompletely) {
  tMachineRecord record = referenceMachine();
  const std::string version(600, 'v');
  for (nCapture::tAttributeAnswer& answer : record.marten.attributes) {
    answer.value.assign(version.begin(), version.end());
    answer.value.push_back(0);
    answer.size = static_cast<uint32_t>(answer.value.size());
  }
  const tMachineRecord first = captured(record);
  EXPECT_THAT(deviationsOf(first), IsEmpty());
  tReplayedLibrary library(first);
  const tController controller(library);
  EXPECT_EQ(
      std::get<std::string>(
          controller.read({QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0, nCommandLine::tInterface::marten})
              .value),
      version);
}

// ---- The captures of the repository: machines of bug reports, and unusual ones ----

std::vector<std::string> machines() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(repositoryPath("tests/machines"))) {
    if (entry.path().extension() == ".json") {
      names.push_back(entry.path().filename().string());
    }
  }
  std::ranges::sort(names);
  return names;
}

class Machines : public testing::TestWithParam<std::string> {
 protected:
  tMachineRecord record_ = nCapture::parseCapture(contentOf("tests/machines/" + GetParam()));
};

TEST_P(Machines, LibraryGivesTheCapturedResults) {
  EXPECT_THAT(deviationsOf(record_), IsEmpty());
}

TEST_P(Machines, CapturedAgain_DiffersInDurationsOnly) {
  tMachineRecord again = captured(record_);
  // The terminals are those of the session with the trigger router, which a record does not replay.
  again.terminals = record_.terminals;
  // A later version of the program reads it.
  again.versions.program = record_.versions.program;
  EXPECT_EQ(textWithoutDurations(again), textWithoutDurations(record_));
}

INSTANTIATE_TEST_SUITE_P(Files, Machines, testing::ValuesIn(machines()), [](const auto& row) {
  std::string name = row.param.substr(0, row.param.find('.'));
  std::erase(name, '-');
  return name;
});

}  // namespace
}  // namespace nTests
