#ifdef _WIN32
#include <windows.h>
#endif

#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/table.h"

namespace nTests {
namespace {

using nCommandLine::isClosedPipe;
using nCommandLine::reasonOf;
using nCommandLine::tOutputBuffer;

// ---- The buffer ----

// A sink that accepts a number of writes and fails those after them.
struct tSink {
  std::error_code operator()(std::string_view bytes) {
    if (accepted++ >= capacity) {
      return std::make_error_code(std::errc::no_space_on_device);
    }
    content += bytes;
    return {};
  }

  int capacity;
  int accepted = 0;
  std::string content{};
};

TEST(OutputBuffer, Text_ReachesTheSinkWhenItIsFlushedOrTheBufferIsFull) {
  tSink sink{100};
  tOutputBuffer buffer(std::ref(sink));
  std::ostream out(&buffer);
  out << "one";
  EXPECT_EQ(sink.content, "");
  out << " two" << std::flush;
  EXPECT_EQ(sink.content, "one two");
  const std::string large(10'000, 'x');
  out << large;
  EXPECT_GE(sink.content.size(), 4096u);
  out.flush();
  EXPECT_EQ(sink.content, "one two" + large);
  EXPECT_TRUE(out.good());
  EXPECT_FALSE(buffer.failure());
}

TEST(OutputBuffer, FailedWrite_KeepsTheFirstReasonAndWritesNothingAfterIt) {
  tSink sink{1};
  tOutputBuffer buffer(std::ref(sink));
  std::ostream out(&buffer);
  out << "one" << std::flush;
  EXPECT_TRUE(out.good());
  out << "two" << std::flush;
  EXPECT_FALSE(out.good());
  EXPECT_EQ(buffer.failure(), std::errc::no_space_on_device);
  out.clear();
  out << std::string(10'000, 'x') << std::flush;
  EXPECT_FALSE(out.good());
  EXPECT_EQ(sink.accepted, 2);
  EXPECT_EQ(sink.content, "one");
}

// ---- The program ----

struct tFailedRun {
  int exitCode;
  std::string error;
};

tFailedRun runOn(std::ostream& out, const tOutputBuffer* buffer,
                 const std::vector<const char*>& words = {"quenra", "attributes"},
                 int32_t writeCode = QUENRA_STATUS_SUCCESS) {
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error, false, false, buffer};
  tScriptedLibrary library;
  library.writeCode = writeCode;
  tScriptedRouting routing;
  tScriptedFacts facts;
  tScriptedInterruption interruption;
  tScriptedLock lock;
  tScriptedInstallation installation;
  tScriptedPrograms programs;
  const nCapture::tMachineRecord machine;
  tRecordDriver driver(machine);
  const int exitCode = nCommandLine::runCommandLine(
      static_cast<int>(words.size()), words.data(), streams,
      {library, routing, facts, interruption, lock, installation, driver, programs});
  return {exitCode, error.str()};
}

tFailedRun runWithOutputThatFails(std::errc reason) {
  tOutputBuffer buffer([reason](std::string_view) { return std::make_error_code(reason); });
  std::ostream out(&buffer);
  return runOn(out, &buffer);
}

TEST(Output, FullDisk_IsAFailureWithTheReason) {
  const tFailedRun run = runWithOutputThatFails(std::errc::no_space_on_device);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.error, "quenra: cannot write the output: no space left on the disk\n");
}

TEST(Output, ClosedPipe_IsASilentFailure) {
  const tFailedRun run = runWithOutputThatFails(std::errc::broken_pipe);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.error, "");
}

TEST(Output, FailureWithoutAKnownReason_IsReportedWithoutOne) {
  std::ostream out(nullptr);
  const tFailedRun run = runOn(out, nullptr);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.error, "quenra: cannot write the output\n");
}

// ---- After a change ----

tFailedRun setWithOutputThatFails(std::errc reason, int32_t writeCode = 0) {
  tOutputBuffer buffer([reason](std::string_view) { return std::make_error_code(reason); });
  std::ostream out(&buffer);
  return runOn(out, &buffer, {"quenra", "set", "driver-setting-1", "7", "--json"}, writeCode);
}

TEST(Output, FullDiskAfterSet_HasAnExitCodeOfItsOwnAndReportsTheChange) {
  const tFailedRun run = setWithOutputThatFails(std::errc::no_space_on_device);
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_EQ(run.error,
            "quenra: cannot write the output: no space left on the disk\n"
            "  The change was applied: driver-setting-1 is set to 7. Do not repeat the command.\n");
}

TEST(Output, ClosedPipeAfterSet_ReportsTheChange) {
  const tFailedRun run = setWithOutputThatFails(std::errc::broken_pipe);
  EXPECT_EQ(run.exitCode, 5);
  EXPECT_EQ(run.error,
            "quenra: cannot write the output: the pipe is closed\n"
            "  The change was applied: driver-setting-1 is set to 7. Do not repeat the command.\n");
}

TEST(Output, FullDiskAfterAFailedSet_IsAPlainFailure) {
  const tFailedRun run =
      setWithOutputThatFails(std::errc::no_space_on_device, QUENRA_STATUS_TIME_OUT);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.error.find("The change was applied"), std::string::npos);
}

// ---- Tables ----

std::string written(const nCommandLine::tTable& table, bool styles) {
  std::ostringstream stream;
  table.write(stream, nCommandLine::tStyle(styles));
  return stream.str();
}

TEST(Table, ColumnsAreAlignedWithoutTrailingSpaces) {
  nCommandLine::tTable table;
  table.addRow({"a", "long cell", "x"});
  table.addRow({"longer", "b", "y"});
  table.addRow({"c", "d", ""});
  EXPECT_EQ(written(table, false),
            "a       long cell  x\n"
            "longer  b          y\n"
            "c       d\n");
}

TEST(Table, EmptyCellInTheMiddle_KeepsItsColumn) {
  nCommandLine::tTable table;
  table.addRow({"a", "", "x"});
  table.addRow({"b", "unit", "y"});
  EXPECT_EQ(written(table, false), "a        x\nb  unit  y\n");
}

TEST(Table, TextBeyondAscii_IsAlignedByCharacters) {
  nCommandLine::tTable table;
  table.addRow({"\xC3\xA9\xC3\xA9", "x"});
  table.addRow({"ab", "y"});
  EXPECT_EQ(written(table, false), "\xC3\xA9\xC3\xA9  x\nab  y\n");
}

TEST(Table, HeadingsAreSetApart) {
  nCommandLine::tTable table;
  table.addHeading("One");
  table.addRow({"a", "x"});
  table.addHeading("Two");
  table.addRow({"b", "y"});
  EXPECT_EQ(written(table, false), "One\na  x\n\nTwo\nb  y\n");
}

TEST(Table, Styles_AreUsedOnlyWhereSupported) {
  nCommandLine::tTable table;
  table.addHeading("One");
  table.addRow({"a", "x"}, true);
  EXPECT_EQ(written(table, true), "\x1B[1mOne\x1B[0m\na  \x1B[2mx\x1B[0m\n");
  EXPECT_EQ(written(table, false), "One\na  x\n");
}

// ---- Reasons ----

TEST(SystemReason, EveryCommonFailure_HasItsPhrase) {
  const std::pair<std::errc, const char*> phrases[] = {
      {std::errc::no_such_file_or_directory, "no such file"},
      {std::errc::is_a_directory, "is a directory"},
      {std::errc::not_a_directory, "a part of the path is not a directory"},
      {std::errc::permission_denied, "access denied"},
      {std::errc::operation_not_permitted, "access denied"},
      {std::errc::read_only_file_system, "the disk is read-only"},
      {std::errc::no_space_on_device, "no space left on the disk"},
      {std::errc::device_or_resource_busy, "in use by another program"},
      {std::errc::filename_too_long, "the path is too long"},
      {std::errc::invalid_argument, "the path is invalid"},
      {std::errc::io_error, "the device reports an input/output error"},
      {std::errc::not_enough_memory, "not enough memory"},
      {std::errc::broken_pipe, "the pipe is closed"},
  };
  for (const auto& [condition, phrase] : phrases) {
    EXPECT_EQ(reasonOf(std::make_error_code(condition)), phrase);
  }
}

TEST(SystemReason, AnyOtherFailure_HasTheTextOfTheSystem) {
  const std::error_code rare = std::make_error_code(std::errc::too_many_links);
  EXPECT_EQ(reasonOf(rare), rare.message());
  EXPECT_FALSE(reasonOf(rare).empty());
}

TEST(SystemReason, ClosedPipe_IsRecognised) {
  EXPECT_TRUE(isClosedPipe(std::make_error_code(std::errc::broken_pipe)));
  EXPECT_FALSE(isClosedPipe(std::make_error_code(std::errc::io_error)));
  EXPECT_FALSE(isClosedPipe({}));
}

#ifdef _WIN32
TEST(SystemReason, ErrorsOfWindows_HaveTheSamePhrases) {
  const std::pair<int, const char*> phrases[] = {
      {ERROR_FILE_NOT_FOUND, "no such file"},
      {ERROR_PATH_NOT_FOUND, "no such file"},
      {ERROR_INVALID_DRIVE, "no such drive"},
      {ERROR_NOT_READY, "the drive is not ready"},
      {ERROR_BAD_NETPATH, "no such network path"},
      {ERROR_BAD_NET_NAME, "no such network path"},
      {ERROR_BAD_PATHNAME, "the path is invalid"},
      {ERROR_ACCESS_DENIED, "access denied"},
      {ERROR_WRITE_PROTECT, "the disk is read-only"},
      {ERROR_SHARING_VIOLATION, "in use by another program"},
      {ERROR_LOCK_VIOLATION, "in use by another program"},
      {ERROR_DISK_FULL, "no space left on the disk"},
      {ERROR_HANDLE_DISK_FULL, "no space left on the disk"},
      {ERROR_INVALID_NAME, "the path is invalid"},
      {ERROR_NOT_ENOUGH_MEMORY, "not enough memory"},
      {ERROR_BROKEN_PIPE, "the pipe is closed"},
      {ERROR_NO_DATA, "the pipe is closed"},
  };
  for (const auto& [number, phrase] : phrases) {
    EXPECT_EQ(reasonOf({number, std::system_category()}), phrase) << number;
  }
}

TEST(SystemReason, ClosedPipeOfWindows_IsRecognised) {
  for (const int number : {ERROR_BROKEN_PIPE, ERROR_NO_DATA, ERROR_PIPE_NOT_CONNECTED}) {
    EXPECT_TRUE(isClosedPipe({number, std::system_category()})) << number;
  }
}
#endif

}  // namespace
}  // namespace nTests
