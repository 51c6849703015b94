#include "tools/quenra/firmware/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/output/diagnostics.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace nTests {
namespace {

using nCommandLine::readFile;
using nCommandLine::tCommandError;
using nCommandLine::tExistingFile;
using nCommandLine::tExitCode;
using nCommandLine::writeFile;

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

// The message with which an operation fails.
std::string messageOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const tCommandError& error) {
    EXPECT_EQ(error.exitCode(), tExitCode::failure);
    EXPECT_EQ(error.status(), std::nullopt);
    return error.what();
  }
  return "(no failure)";
}

std::string readMessage(const std::string& path) {
  return messageOf([&path] { static_cast<void>(readFile(path)); });
}

std::string writeMessage(const std::string& path) {
  return messageOf([&path] { writeFile(path, "new", tExistingFile::replace); });
}

class Files : public testing::Test {
 protected:
  tTestFiles folder_;
};

TEST_F(Files, WrittenBytes_AreRead) {
  for (const size_t size : {0u, 1u, 5000u, 3u << 20}) {
    std::string content(size, 'x');
    for (size_t i = 0; i < size; i += 7) {
      content[i] = static_cast<char>(i % 256);  // with line ends and NULs
    }
    writeFile(folder_.path("file"), content, tExistingFile::replace);
    EXPECT_TRUE(folder_.content("file") == content) << size;
    EXPECT_TRUE(readFile(folder_.path("file")) == content) << size;
  }
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Files, NameBeyondAscii_IsReadAndWritten) {
  const std::string path = folder_.path("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
  writeFile(path, "content", tExistingFile::keep);
  EXPECT_EQ(readFile(path), "content");
}

// ---- Reading ----

TEST_F(Files, ReadOfAMissingFile_ReportsNoSuchFile) {
  for (const char* const name : {"nofile", "none/nofile"}) {
    const std::string path = folder_.path(name);
    EXPECT_EQ(readMessage(path), "cannot read '" + path + "': no such file");
  }
  EXPECT_EQ(readMessage(""), "cannot read '': no such file");
}

TEST_F(Files, ReadOfADirectory_ReportsADirectory) {
  const std::string path = folder_.path(".");
  EXPECT_EQ(readMessage(path), "cannot read '" + path + "': is a directory");
}

TEST_F(Files, ReadBelowAFile_ReportsTheWrongPath) {
  static_cast<void>(folder_.file("file", "x"));
  const std::string path = folder_.path("file/below");
  // Windows reports the same error for a parent that is a file and for a missing one.
  const std::string reason = kIsWindows ? "no such file" : "a part of the path is not a directory";
  EXPECT_EQ(readMessage(path), "cannot read '" + path + "': " + reason);
}

TEST_F(Files, PathThatIsNotUnicode_IsNeitherReadNorWritten) {
  EXPECT_EQ(readMessage("\xFF"), "cannot read '\xFF': the path is not valid Unicode");
  EXPECT_EQ(writeMessage("\xFF"), "cannot write '\xFF': the path is not valid Unicode");
}

// ---- Writing ----

TEST_F(Files, WriteIntoAMissingDirectory_ReportsNoSuchDirectory) {
  const std::string path = folder_.path("none/file");
  EXPECT_EQ(writeMessage(path), "cannot write '" + path + "': no such directory");
  EXPECT_EQ(folder_.files(), 0u);
}

TEST_F(Files, WriteOverADirectory_ReportsADirectoryAndLeavesNothing) {
  const std::string path = folder_.path("inner");
  std::filesystem::create_directory(path);
  EXPECT_EQ(writeMessage(path), "cannot write '" + path + "': is a directory");
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Files, FilesOfTheUserBesideTheTarget_Stay) {
  static_cast<void>(folder_.file("file.unfinished", "of the user"));
  static_cast<void>(folder_.file("file.tmp", "of the user"));
  writeFile(folder_.path("file"), "new", tExistingFile::keep);
  EXPECT_EQ(folder_.content("file.unfinished"), "of the user");
  EXPECT_EQ(folder_.content("file.tmp"), "of the user");
  EXPECT_EQ(folder_.files(), 3u);
}

TEST_F(Files, ExistingFileToKeep_StaysAndIsReported) {
  const std::string path = folder_.file("file", "old");
  EXPECT_EQ(messageOf([&path] { writeFile(path, "new", tExistingFile::keep); }),
            "cannot write '" + path + "': the file exists");
  EXPECT_EQ(folder_.content("file"), "old");
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Files, FileThatAppearsDuringTheWriting_IsKept) {
  const std::string path = folder_.path("file");
  EXPECT_EQ(messageOf([&] {
              writeFile(path, "new", tExistingFile::keep, [this](const auto& name) {
                static_cast<void>(folder_.file("file", "of another program"));
                return nCommandLine::createFile(name);
              });
            }),
            "cannot write '" + path + "': the file exists");
  EXPECT_EQ(folder_.content("file"), "of another program");
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Files, TemporaryNameThatExists_IsNeitherWrittenNorRemoved) {
  std::vector<std::filesystem::path> names;
  writeFile(folder_.path("file"), "new", tExistingFile::keep, [&names, this](const auto& name) {
    names.push_back(name);
    if (names.size() == 1) {
      static_cast<void>(folder_.file(name.filename().string(), "of the user"));
    }
    return nCommandLine::createFile(name);
  });
  ASSERT_EQ(names.size(), 2u);
  EXPECT_NE(names[0], names[1]);
  EXPECT_EQ(folder_.content(names[0].filename().string()), "of the user");
  EXPECT_EQ(folder_.content("file"), "new");
  EXPECT_EQ(folder_.files(), 2u);
}

// /dev/full fails every write for lack of space. Wine maps the host's files to drive Z:.
TEST_F(Files, WriteToAFullDisk_ReportsTheSpaceAndKeepsTheOldFile) {
  const std::string path = folder_.file("file", "old");
  for (const size_t size : {1u, 100'000u}) {  // fails in the flush, or in an earlier write
    EXPECT_EQ(messageOf([&] {
                writeFile(path, std::string(size, 'x'), tExistingFile::replace, [](const auto&) {
                  return std::fopen(kIsWindows ? "Z:\\dev\\full" : "/dev/full", "wb");
                });
              }),
              "cannot write '" + path + "': no space left on the disk");
    EXPECT_EQ(folder_.content("file"), "old");
    EXPECT_EQ(folder_.files(), 1u);
  }
}

TEST_F(Files, PathsOfOneFile_AreTheSameFile) {
  const std::string path = folder_.file("file", "x");
  std::filesystem::create_hard_link(path, folder_.path("link"));
  EXPECT_TRUE(nCommandLine::isSameFile(path, path));
  EXPECT_TRUE(nCommandLine::isSameFile(path, folder_.path("./file")));
  EXPECT_TRUE(nCommandLine::isSameFile(path, folder_.path("link")));
  EXPECT_FALSE(nCommandLine::isSameFile(path, folder_.path("none")));
  EXPECT_FALSE(nCommandLine::isSameFile(path, folder_.file("other", "x")));
}

#ifndef _WIN32
TEST_F(Files, DeviceThatFailsARead_ReportsAnInputOutputError) {
  EXPECT_EQ(readMessage("/proc/self/mem"),
            "cannot read '/proc/self/mem': the device reports an input/output error");
}

// Runs as an unprivileged user: the superuser passes every access check.
class tUnprivilegedUser {
 public:
  tUnprivilegedUser() { static_cast<void>(seteuid(kNobody)); }
  tUnprivilegedUser(const tUnprivilegedUser&) = delete;
  tUnprivilegedUser& operator=(const tUnprivilegedUser&) = delete;
  ~tUnprivilegedUser() { static_cast<void>(seteuid(before_)); }

 private:
  static constexpr uid_t kNobody = 65534;
  uid_t before_ = geteuid();
};

TEST_F(Files, WithoutPermission_ReportsAccessDenied) {
  const std::string path = folder_.file("file", "old");
  const std::string directory = folder_.path(".");
  std::filesystem::permissions(path, std::filesystem::perms::none);
  std::filesystem::permissions(directory, std::filesystem::perms::owner_read |
                                              std::filesystem::perms::owner_exec |
                                              std::filesystem::perms::others_exec);
  {
    const tUnprivilegedUser user;
    EXPECT_EQ(readMessage(path), "cannot read '" + path + "': access denied");
    EXPECT_EQ(writeMessage(path), "cannot write '" + path + "': access denied");
  }
  std::filesystem::permissions(directory, std::filesystem::perms::owner_all);
}
#endif

}  // namespace
}  // namespace nTests
