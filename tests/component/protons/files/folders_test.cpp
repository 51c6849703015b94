#include "zoapal/protons/files/windowsu/folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <system_error>

#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::disk;
using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::createFile;
using nQUENRA1400::nZOAPAL000::createParentFolders;
using nQUENRA1400::nZOAPAL000::createProtectedFolder;
using nQUENRA1400::nZOAPAL000::holdFile;
using nQUENRA1400::nZOAPAL000::temporaryDirectory;
using nQUENRA1400::nZOAPAL000::tUniqueFile;
using nQUENRA1400::nZOAPAL000::writeBytes;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace fs = std::filesystem;

// ---- The temporary directory ----

class TemporaryDirectory : public nFakeWindows::FakeWindowsTest {
 protected:
  void TearDown() override {
    unsetenv("TMPDIR");
    FakeWindowsTest::TearDown();
  }
  static DWORD errorOf(const std::function<void()>& work) {
    try {
      work();
      return 0;
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().category(), std::system_category());
      return static_cast<DWORD>(error.code().value());
    }
  }
  static DWORD errorOfQuery(const fs::path& path) {
    setenv("TMPDIR", path.c_str(), 1);
    return errorOf([] { static_cast<void>(temporaryDirectory()); });
  }
  static DWORD errorOfCreation(const fs::path& path) {
    return errorOf([&] { createParentFolders(path.u16string()); });
  }

  const tTemporaryFolder folder_;
};

TEST_F(TemporaryDirectory, OfAnyLength_EndsWithASeparator) {
  for (const size_t length : {1u, 100u, 255u}) {
    const fs::path path = folder_.path() / std::string(length, 'x') / std::string(length, 'y');
    fs::create_directories(path);
    EXPECT_EQ(errorOfQuery(path), 0u);
    std::u16string name = temporaryDirectory();
    std::replace(name.begin(), name.end(), u'\\', u'/');
    EXPECT_EQ(fs::path(name), path / "");
  }
}

TEST_F(TemporaryDirectory, MissingOrAFile_FailsWithTheReason) {
  EXPECT_EQ(errorOfQuery(folder_.path() / "missing"), DWORD{ERROR_FILE_NOT_FOUND});
  std::ofstream(folder_.path() / "file") << "content";
  EXPECT_EQ(errorOfQuery(folder_.path() / "file"), DWORD{ERROR_DIRECTORY});
}

TEST_F(TemporaryDirectory, CallThatFails_FailsWithItsError) {
  for (const tCall call : {tCall::getTempPath, tCall::getDiskAttributes}) {
    faultPlan().failCall(call, 1, ERROR_NO_SYSTEM_RESOURCES);
    EXPECT_EQ(errorOfQuery(folder_.path()), DWORD{ERROR_NO_SYSTEM_RESOURCES});
    faultPlan().reset();
  }
}

TEST_F(TemporaryDirectory, MissingParents_AreCreatedAndThePathIsNot) {
  EXPECT_EQ(errorOfCreation(folder_.path() / "a" / "b" / "c"), 0u);
  EXPECT_TRUE(fs::is_empty(folder_.path() / "a" / "b"));
  EXPECT_EQ(errorOfCreation(folder_.path() / "a" / "b" / "c"), 0u) << "they exist";
  EXPECT_EQ(errorOfCreation("name"), 0u) << "without a parent";
  EXPECT_EQ(errorOfCreation("/name"), 0u) << "in a root";
}

TEST_F(TemporaryDirectory, ParentThatCannotBeCreated_FailsWithTheReason) {
  std::ofstream(folder_.path() / "file") << "content";
  EXPECT_EQ(errorOfCreation(folder_.path() / "file" / "a" / "b"), DWORD{ERROR_PATH_NOT_FOUND});
  faultPlan().reset();
  faultPlan().failCall(tCall::createDirectory, 2, ERROR_DISK_FULL);
  EXPECT_EQ(errorOfCreation(folder_.path() / "b" / "c" / "d"), DWORD{ERROR_DISK_FULL});
}

TEST_F(TemporaryDirectory, ParentThatAnotherProcessCreates_IsUsed) {
  faultPlan().beforeCall(tCall::createDirectory, 1,
                         [this] { fs::create_directory(folder_.path() / "a"); });
  EXPECT_EQ(errorOfCreation(folder_.path() / "a" / "b"), 0u);
}

// ---- Files to write ----

class NewFile : public nFakeWindows::FakeWindowsTest {
 protected:
  [[nodiscard]] std::string content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  [[nodiscard]] bool write(std::string_view text) const {
    const tUniqueFile file = createFile(path_.string());
    EXPECT_TRUE(file);
    return writeBytes(file, reinterpret_cast<const uint8_t*>(text.data()), text.size());
  }

  const tTemporaryFolder folder_;
  const fs::path path_ = folder_.path() / "file";
};

TEST_F(NewFile, ContentOfAnySize_ReplacesTheFile) {
  constexpr size_t kBlock = 1 << 20;
  for (const size_t size :
       {2 * kBlock + 1, 2 * kBlock, kBlock + 1, kBlock, kBlock - 1, size_t{1}, size_t{0}}) {
    std::string text(size, 'x');
    for (size_t i = 0; i < size; i += 1000) {
      text[i] = static_cast<char>(i / 1000);
    }
    EXPECT_TRUE(write(text));
    EXPECT_TRUE(content() == text) << size;
  }
  EXPECT_TRUE(fs::exists(path_)) << "without content";
}

TEST_F(NewFile, BlockThatIsRefused_EndsTheWritingAfterThoseBefore) {
  constexpr size_t kBlock = 1 << 20;
  faultPlan().failCall(tCall::writeFile, 2, ERROR_DISK_FULL);
  EXPECT_FALSE(write(std::string(3 * kBlock, 'x')));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
  EXPECT_EQ(content().size(), kBlock);
  EXPECT_EQ(faultPlan().callCount(tCall::writeFile), 2u);
}

TEST_F(NewFile, FullDevice_EndsTheWriting) {
  const tUniqueFile file = createFile("/dev/full");
  const uint8_t byte = 1;
  EXPECT_FALSE(writeBytes(file, &byte, 1));
  EXPECT_TRUE(writeBytes(file, nullptr, 0));
}

TEST_F(NewFile, PathThatCannotBeOpened_ReturnsNoFileAndTheReason) {
  EXPECT_FALSE(createFile((folder_.path() / "missing" / "file").string()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_FALSE(createFile(folder_.path().string())) << "a folder";
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  std::ofstream(path_) << "content";
  fs::permissions(path_, fs::perms::owner_read);
  EXPECT_FALSE(createFile(path_.string())) << "read-only";
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(content(), "content");
}

TEST_F(NewFile, HeldFile_CannotBeOpenedAndKeepsItsContent) {
  std::ofstream(path_) << "content";
  tUniqueFile held = holdFile(path_.u16string());
  EXPECT_FALSE(createFile(path_.string()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(content(), "content");
  held.reset();
  EXPECT_TRUE(createFile(path_.string()));
}

TEST_F(NewFile, WhileItIsWritten_OthersCanReadAndWrite) {
  const tUniqueFile file = createFile(path_.string());
  EXPECT_TRUE(createFile(path_.string())) << "a second writer";
  EXPECT_FALSE(holdFile(path_.u16string())) << "a reader that shares no writing";
}

// ---- Protected folders and held files ----

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class ProtectedFolder : public nFakeWindows::FakeWindowsTest {
 protected:
  [[nodiscard]] tUniqueFile create() const { return createProtectedFolder(folder.u16string()); }
  // The Windows error that creating the folder reports; 0 when it succeeds.
  [[nodiscard]] int errorOfCreation() const {
    try {
      const tUniqueFile created = create();
      return 0;
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().category(), std::system_category());
      return error.code().value();
    }
  }
  // The Windows error of another process that opens a path; 0 when it succeeds.
  [[nodiscard]] static DWORD errorOfOpening(const fs::path& path, DWORD access,
                                            DWORD sharing = kShareAll) {
    const std::u16string name = path.u16string();
    const tUniqueFile opened(CreateFileW(reinterpret_cast<LPCWSTR>(name.c_str()), access, sharing,
                                         nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                         nullptr));
    return opened ? 0 : GetLastError();
  }

 private:
  const tTemporaryFolder temporary_;

 protected:
  const fs::path folder = temporary_.path() / "folder";
};

TEST_F(ProtectedFolder, NewFolder_IsForItsOwnerTheSystemAndAdministrators) {
  disk().useIntegrityLevel(SECURITY_MANDATORY_MEDIUM_RID);
  const tUniqueFile created = create();
  EXPECT_TRUE(fs::is_directory(folder));
  ASSERT_THAT(disk().protections(), SizeIs(1));
  EXPECT_TRUE(disk().protections()[0].isNew);
  EXPECT_EQ(disk().protections()[0].path, folder.string());
  EXPECT_EQ(disk().protections()[0].descriptor,
            "D:P(A;OICI;FA;;;OW)(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)");
}

TEST_F(ProtectedFolder, CallerAboveMedium_LabelsTheFolderWithItsLevelUpToHigh) {
  const std::pair<DWORD, const char*> kLabels[] = {
      {SECURITY_MANDATORY_MEDIUM_RID + 1, "S:(ML;OICI;NW;;;S-1-16-8193)"},
      {SECURITY_MANDATORY_HIGH_RID, "S:(ML;OICI;NW;;;S-1-16-12288)"},
      {SECURITY_MANDATORY_SYSTEM_RID, "S:(ML;OICI;NW;;;S-1-16-12288)"},
  };
  for (const auto& [level, label] : kLabels) {
    disk().reset();
    disk().useIntegrityLevel(level);
    fs::remove(folder);
    const tUniqueFile created = create();
    ASSERT_THAT(disk().protections(), SizeIs(1));
    EXPECT_THAT(disk().protections()[0].descriptor, testing::EndsWith(label));
  }
}

TEST_F(ProtectedFolder, CallerUpToMedium_SetsNoLabel) {
  for (const DWORD level :
       {DWORD{SECURITY_MANDATORY_LOW_RID}, DWORD{SECURITY_MANDATORY_MEDIUM_RID}}) {
    disk().reset();
    disk().useIntegrityLevel(level);
    fs::remove(folder);
    const tUniqueFile created = create();
    ASSERT_THAT(disk().protections(), SizeIs(1));
    EXPECT_THAT(disk().protections()[0].descriptor, Not(HasSubstr("S:")));
  }
}

TEST_F(ProtectedFolder, ExistingFolder_IsProtectedThroughItsHandle) {
  constexpr SECURITY_INFORMATION kDacl = DACL_SECURITY_INFORMATION | 0x80000000;
  const std::pair<DWORD, SECURITY_INFORMATION> kParts[] = {
      {SECURITY_MANDATORY_MEDIUM_RID, kDacl},
      {SECURITY_MANDATORY_HIGH_RID, kDacl | LABEL_SECURITY_INFORMATION},
  };
  fs::create_directory(folder);
  for (const auto& [level, parts] : kParts) {
    disk().reset();
    disk().useIntegrityLevel(level);
    const tUniqueFile opened = create();
    ASSERT_THAT(disk().protections(), SizeIs(1));
    EXPECT_FALSE(disk().protections()[0].isNew);
    EXPECT_EQ(disk().protections()[0].parts, parts);
    EXPECT_THAT(disk().protections()[0].descriptor, testing::StartsWith("D:P("));
  }
}

TEST_F(ProtectedFolder, LinkInItsPlace_FailsAndStays) {
  const fs::path target = folder.parent_path() / "target";
  fs::create_directory(target);
  fs::create_directory_symlink(target, folder);
  EXPECT_EQ(errorOfCreation(), ERROR_DIRECTORY);
  EXPECT_TRUE(fs::is_symlink(folder));
  EXPECT_THAT(disk().protections(), IsEmpty());
}

TEST_F(ProtectedFolder, FileInItsPlace_FailsAndStays) {
  std::ofstream(folder) << "a file";
  EXPECT_EQ(errorOfCreation(), ERROR_DIRECTORY);
  EXPECT_TRUE(fs::is_regular_file(folder));
}

TEST_F(ProtectedFolder, NewFolderThatIsReplacedByALink_FailsAndLeavesTheTarget) {
  const fs::path target = folder.parent_path() / "target";
  fs::create_directory(target);
  std::ofstream(target / "file") << "a file";
  faultPlan().beforeCall(tCall::createDiskFile, 1, [&] {
    fs::remove(folder);
    fs::create_directory_symlink(target, folder);
  });
  EXPECT_EQ(errorOfCreation(), ERROR_DIRECTORY);
  EXPECT_TRUE(fs::exists(target / "file"));
}

TEST_F(ProtectedFolder, OpenHandle_KeepsTheFolderFromBeingRenamedOrRemoved) {
  const tUniqueFile created = create();
  EXPECT_EQ(errorOfOpening(folder, DELETE), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(errorOfOpening(folder, FILE_LIST_DIRECTORY, FILE_SHARE_READ), 0u);
  EXPECT_EQ(errorOfOpening(folder, FILE_ADD_FILE), 0u);
}

TEST_F(ProtectedFolder, EachCallThatFails_IsReportedAndLeavesNoFolder) {
  for (const tCall call :
       {tCall::getTokenInformation, tCall::convertSecurityDescriptor, tCall::createDirectory,
        tCall::createDiskFile, tCall::getFileInformation}) {
    SCOPED_TRACE(nameOf(call));
    faultPlan().reset();
    faultPlan().failCall(call, 1, ERROR_NO_SYSTEM_RESOURCES);
    EXPECT_EQ(errorOfCreation(), ERROR_NO_SYSTEM_RESOURCES);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_THAT(nFakeWindows::objects().open(), IsEmpty());
  }
  fs::create_directory(folder);
  faultPlan().failEveryCall(tCall::setKernelObjectSecurity, ERROR_ACCESS_DENIED);
  EXPECT_EQ(errorOfCreation(), ERROR_ACCESS_DENIED);
}

TEST_F(ProtectedFolder, MissingParent_FailsWithPathNotFound) {
  fs::remove(folder.parent_path());
  EXPECT_EQ(errorOfCreation(), ERROR_PATH_NOT_FOUND);
}

TEST_F(ProtectedFolder, HeldFile_CanOnlyBeRead) {
  std::ofstream(folder) << "a file";
  tUniqueFile file = holdFile(folder.u16string());
  ASSERT_TRUE(file);
  EXPECT_EQ(errorOfOpening(folder, GENERIC_READ, FILE_SHARE_READ), 0u);
  EXPECT_EQ(errorOfOpening(folder, GENERIC_WRITE), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(errorOfOpening(folder, DELETE), DWORD{ERROR_SHARING_VIOLATION});
  file.reset();
  EXPECT_EQ(errorOfOpening(folder, GENERIC_WRITE), 0u);
}

TEST_F(ProtectedFolder, FileThatAnotherProcessWrites_IsNotHeld) {
  std::ofstream(folder) << "a file";
  const std::u16string name = folder.u16string();
  const tUniqueFile writer(CreateFileW(reinterpret_cast<LPCWSTR>(name.c_str()), GENERIC_WRITE,
                                       kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                       nullptr));
  ASSERT_TRUE(writer);
  EXPECT_FALSE(holdFile(folder.u16string()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
}

// ---- Removal of a tree ----

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
