#include "zoapal/protons/files/windowsu/folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;
using nFakeWindows::disk;
using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using testing::IsEmpty;

// A folder to remove, and beside it a folder of others with one file.
class RemoveTree : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    fs::create_directories(folder);
    fs::create_directories(others);
    write(others / "file");
  }

  static void write(const fs::path& file) { std::ofstream(file) << "content"; }
  static void makeReadOnly(const fs::path& path) {
    fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
  }
  static bool isReadOnly(const fs::path& path) {
    return (fs::status(path).permissions() & fs::perms::owner_write) == fs::perms::none;
  }
  static bool exists(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

  void remove() const { nQUENRA1400::nZOAPAL000::removeTree(folder.u16string()); }
  void expectOthersUntouched() const {
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(others)));
    EXPECT_EQ(fs::file_size(others / "file"), 7u);
  }

 private:
  const tTemporaryFolder temporary_;

 protected:
  const fs::path folder = temporary_.path() / "folder";
  const fs::path others = temporary_.path() / "others";
};

TEST_F(RemoveTree, FilesAndNestedFolders_AreRemoved) {
  fs::create_directories(folder / "a" / "b" / "c");
  for (const char* name : {"1", "2", "3", "4", "5", "a/6", "a/b/7", "a/b/c/8", "a/b/c/\xC3\xA9"}) {
    write(folder / name);
  }
  remove();
  EXPECT_FALSE(exists(folder));
  expectOthersUntouched();
}

TEST_F(RemoveTree, LinksInTheFolder_AreRemovedWithoutTheirTargets) {
  fs::create_directories(folder / "nested");
  for (const fs::path& place : {folder, folder / "nested"}) {
    fs::create_directory_symlink(others, place / "to folder");
    fs::create_symlink(others / "file", place / "to file");
    fs::create_symlink(others / "missing", place / "to nothing");
    fs::create_directory_symlink(folder, place / "to folder above");
  }
  remove();
  EXPECT_FALSE(exists(folder));
  expectOthersUntouched();
}

TEST_F(RemoveTree, PathOfALink_RemovesTheLink) {
  fs::remove(folder);
  fs::create_directory_symlink(others, folder);
  remove();
  EXPECT_FALSE(exists(folder));
  expectOthersUntouched();
}

TEST_F(RemoveTree, LinkAboveTheFolder_IsFollowed) {
  const fs::path link = others / "link";
  fs::create_directory_symlink(folder.parent_path(), link);
  nQUENRA1400::nZOAPAL000::removeTree((link / "folder").u16string());
  EXPECT_FALSE(exists(folder));
  expectOthersUntouched();
}

// A folder above an entry becomes a link between the listing and the removal of the entry.
TEST_F(RemoveTree, FolderThatBecomesALinkMeanwhile_IsNotFollowed) {
  write(folder / "file");
  // Calls: the parent, the folder, its entry.
  faultPlan().beforeCall(tCall::createDiskFile, 3, [this] {
    fs::rename(folder, folder.string() + " moved");
    fs::create_directory_symlink(others, folder);
  });
  remove();
  expectOthersUntouched();
}

TEST_F(RemoveTree, ReadOnlyEntries_AreRemoved) {
  for (const bool isExtended : {true, false}) {
    if (!isExtended) {
      disk().refuseExtendedDisposition();
    }
    fs::create_directories(folder / "nested");
    write(folder / "nested" / "file");
    makeReadOnly(folder / "nested" / "file");
    remove();
    EXPECT_FALSE(exists(folder)) << isExtended;
  }
}

TEST_F(RemoveTree, ReadOnlyFileWithAFurtherName_KeepsItsAttributes) {
  makeReadOnly(others / "file");
  fs::create_hard_link(others / "file", folder / "further name");
  disk().refuseExtendedDisposition();
  remove();
  EXPECT_TRUE(isReadOnly(others / "file"));
  expectOthersUntouched();
}

TEST_F(RemoveTree, FileInUse_StaysWithItsFolder) {
  fs::create_directories(folder / "nested");
  write(folder / "nested" / "in use");
  write(folder / "free");
  const std::u16string name = (folder / "nested" / "in use").u16string();
  const HANDLE file =
      CreateFileW(reinterpret_cast<LPCWSTR>(name.c_str()), GENERIC_READ, FILE_SHARE_READ, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  remove();
  EXPECT_TRUE(exists(folder / "nested" / "in use"));
  EXPECT_FALSE(exists(folder / "free"));
  CloseHandle(file);
  remove();
  EXPECT_FALSE(exists(folder));
}

TEST_F(RemoveTree, FolderInUseWhileItIsRemoved_IsNotRenamed) {
  write(folder / "file");
  DWORD error = 0;
  faultPlan().beforeCall(tCall::setFileInformation, 1, [&] {
    const std::u16string name = folder.u16string();
    const HANDLE other = CreateFileW(reinterpret_cast<LPCWSTR>(name.c_str()), DELETE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                     nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    EXPECT_EQ(other, INVALID_HANDLE_VALUE);
    error = GetLastError();
  });
  remove();
  EXPECT_EQ(error, DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_FALSE(exists(folder));
}

TEST_F(RemoveTree, NameThatTheSystemDoesNotReport_StaysAsItIs) {
  write(folder / "file");
  faultPlan().failEveryCall(tCall::getFinalPathName, ERROR_INVALID_FUNCTION);
  remove();
  EXPECT_TRUE(exists(folder / "file"));
}

TEST_F(RemoveTree, NamesThatCannotBeCompared_StayAsTheyAre) {
  write(folder / "file");
  faultPlan().failEveryCall(tCall::compareStringOrdinal, ERROR_INVALID_PARAMETER);
  remove();
  EXPECT_TRUE(exists(folder / "file"));
}

TEST_F(RemoveTree, LongNames_AreRemoved) {
  fs::path deep = folder;
  for (int i = 0; i < 4; ++i) {
    deep /= std::string(100, static_cast<char>('a' + i));
  }
  fs::create_directories(deep);
  write(deep / "file");
  remove();
  EXPECT_FALSE(exists(folder));
}

TEST_F(RemoveTree, ChainOf64Folders_IsRemovedAndALongerOneStays) {
  for (const unsigned length : {64u, 65u}) {
    fs::path deep = folder;
    for (unsigned i = 1; i < length; ++i) {
      deep /= "x";
    }
    fs::create_directories(deep);
    write(deep / "file");
    remove();
    EXPECT_EQ(exists(deep / "file"), length == 65u) << length;
  }
}

TEST_F(RemoveTree, MissingFolder_IsNotAFailure) {
  fs::remove(folder);
  remove();
  nQUENRA1400::nZOAPAL000::removeTree((folder / "missing").u16string());
  expectOthersUntouched();
}

TEST_F(RemoveTree, EachCallThatFails_TouchesNothingOutsideTheFolder) {
  const auto fill = [this] {
    fs::create_directories(folder / "nested");
    write(folder / "nested" / "file");
    fs::create_directory_symlink(others, folder / "nested" / "link");
  };
  fill();
  faultPlan().reset();
  remove();
  const unsigned calls = faultPlan().callCount();
  ASSERT_GT(calls, 15u);
  for (unsigned nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    fs::remove_all(folder);
    fill();
    faultPlan().reset();
    faultPlan().failAnyCall(nth, ERROR_ACCESS_DENIED);
    remove();
    expectOthersUntouched();
    EXPECT_THAT(nFakeWindows::objects().open(), IsEmpty());
  }
}

}  // namespace
}  // namespace nTests
