#include "zoapal/protons/files/windowsu/folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;
using nFakeWindows::disk;
using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::createProtectedFolder;
using nQUENRA1400::nZOAPAL000::holdFile;
using nQUENRA1400::nZOAPAL000::tUniqueFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

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

}  // namespace
}  // namespace nTests
