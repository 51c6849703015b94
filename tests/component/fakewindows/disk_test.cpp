// The errors with which the calls on folders and files fail, as Windows documents them.
#include "tests/fakewindows/disk.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;
using nQUENRA1400::nZOAPAL000::tUniqueFile;
using nQUENRA1400::nZOAPAL000::wideText;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Disk : public nFakeWindows::FakeWindowsTest {
 protected:
  static tUniqueFile open(const fs::path& path, DWORD access,
                          DWORD flags = FILE_FLAG_BACKUP_SEMANTICS, DWORD sharing = kShareAll) {
    return tUniqueFile(CreateFileW(wideText(path.u16string().c_str()), access, sharing, nullptr,
                                   OPEN_EXISTING, flags, nullptr));
  }
  static DWORD errorOfOpening(const fs::path& path, DWORD flags = FILE_FLAG_BACKUP_SEMANTICS) {
    return open(path, GENERIC_READ, flags) ? 0 : GetLastError();
  }
  static DWORD errorOfRemoval(const tUniqueFile& entry) {
    FILE_DISPOSITION_INFO disposition{TRUE};
    const bool isDone = SetFileInformationByHandle(entry.get(), FileDispositionInfo, &disposition,
                                                   sizeof disposition) != FALSE;
    return isDone ? 0 : GetLastError();
  }

  const tTemporaryFolder folder_;
};

TEST_F(Disk, MissingEntryAndMissingFolder_AreDistinguished) {
  EXPECT_EQ(errorOfOpening(folder_.path() / "missing"), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(errorOfOpening(folder_.path() / "missing" / "file"), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(Disk, FolderWithoutBackupSemantics_IsDenied) {
  EXPECT_EQ(errorOfOpening(folder_.path(), FILE_ATTRIBUTE_NORMAL), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(errorOfOpening(folder_.path()), 0u);
}

TEST_F(Disk, Sharing_IsRequiredOfBothHandles) {
  const fs::path file = folder_.path() / "file";
  std::ofstream(file) << "content";
  const tUniqueFile reader = open(file, GENERIC_READ, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ);
  ASSERT_TRUE(reader);
  EXPECT_FALSE(open(file, GENERIC_WRITE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_FALSE(open(file, GENERIC_READ, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_WRITE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_TRUE(open(file, FILE_READ_ATTRIBUTES, FILE_ATTRIBUTE_NORMAL, 0)) << "shares no access";
}

TEST_F(Disk, Removal_NeedsItsAccessAnEmptyFolderAndAWritableEntry) {
  const fs::path nested = folder_.path() / "nested";
  const fs::path file = nested / "file";
  fs::create_directory(nested);
  std::ofstream(file) << "content";
  EXPECT_EQ(errorOfRemoval(open(file, GENERIC_READ)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(errorOfRemoval(open(nested, DELETE)), DWORD{ERROR_DIR_NOT_EMPTY});
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(errorOfRemoval(open(file, DELETE)), DWORD{ERROR_ACCESS_DENIED});
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
  EXPECT_EQ(errorOfRemoval(open(file, DELETE)), 0u);
  EXPECT_EQ(errorOfRemoval(open(nested, DELETE)), 0u);
  EXPECT_FALSE(fs::exists(nested));
}

TEST_F(Disk, Listing_EndsWithNoMoreFiles) {
  for (const char* name : {"a", "b", "c"}) {
    std::ofstream(folder_.path() / name) << "content";
  }
  const tUniqueFile folder = open(folder_.path(), FILE_LIST_DIRECTORY);
  alignas(8) std::array<uint8_t, 1024> block{};
  unsigned blocks = 0;
  while (GetFileInformationByHandleEx(folder.get(), FileIdBothDirectoryInfo, block.data(),
                                      static_cast<DWORD>(block.size()))) {
    ++blocks;
  }
  EXPECT_EQ(blocks, 3u) << "five entries, two in a block";
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
}

TEST_F(Disk, NameThatExceedsItsBuffer_ReportsTheSizeWithItsNul) {
  const tUniqueFile folder = open(folder_.path(), FILE_READ_ATTRIBUTES);
  constexpr DWORD kName = FILE_NAME_OPENED | VOLUME_NAME_NT;
  std::u16string name(1, u'\0');
  const DWORD needed = GetFinalPathNameByHandleW(folder.get(), wideText(name.data()), 1, kName);
  name.resize(needed);
  EXPECT_EQ(GetFinalPathNameByHandleW(folder.get(), wideText(name.data()), needed, kName),
            needed - 1);
  EXPECT_TRUE(name.starts_with(u"\\Device\\"));
}

TEST_F(Disk, ProtectionThroughAHandle_NeedsItsAccess) {
  const tUniqueFile folder = open(folder_.path(), FILE_LIST_DIRECTORY);
  EXPECT_FALSE(SetKernelObjectSecurity(folder.get(), DACL_SECURITY_INFORMATION, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

}  // namespace
}  // namespace nTests
