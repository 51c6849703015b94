#include "source/user/update/tupdatefolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/uuid/entropy_error.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "source/user/update/foldername.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::randomFolderName;
using nQUENRA1400::tUpdateFolder;
using testing::HasSubstr;

using UpdateFolder = nFakeWindows::FakeWindowsTest;

TEST_F(UpdateFolder, NameWithTwoLeadingSeparatorsOfEitherKind_IsAbsolute) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name :
       {u"\\\\srv\\share\\x.cap", u"//srv/share/x.cap", u"\\/srv/share/x.cap",
        u"/\\srv/share/x.cap", u"\\\\?\\C:\\x.cap", u"\\\\", u"//"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST_F(UpdateFolder, NameWithADriveLetter_IsAbsolute) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name : {u"C:\\x.cap", u"z:/x.cap", u"D:x.cap", u"A:"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST_F(UpdateFolder, AnyOtherName_LiesInTheFolder) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name : {u"x.cap", u"\\x.cap", u"/x.cap", u"sub\\\\x.cap",
                                         u"1:x.cap", u"\u00C4:x.cap", u"C", u"\\", u"x//y"}) {
    const std::u16string path = folder.pathOf(name);
    EXPECT_TRUE(path.ends_with(name));
    EXPECT_TRUE(path.starts_with(std::filesystem::temp_directory_path().u16string()));
    EXPECT_GT(path.size(), name.size() + 36);
  }
}

TEST_F(UpdateFolder, WithoutRandomBytes_ThrowsTheErrorOfTheGenerator) {
  faultPlan().failEveryCall(tCall::getRandom, ERROR_ACCESS_DENIED);
  try {
    static_cast<void>(randomFolderName());
    FAIL() << "nothing is thrown";
  } catch (const boost::uuids::entropy_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("getrandom"));
  }
}

TEST_F(UpdateFolder, WithoutATemporaryDirectory_ThrowsAFilesystemErrorOfThatName) {
  const tTemporaryFolder missing;
  setenv("TMPDIR", (missing.path() / "none").c_str(), 1);
  try {
    const tUpdateFolder folder("name");
    ADD_FAILURE() << "nothing is thrown";
  } catch (const std::filesystem::filesystem_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("temp_directory_path"));
  }
  unsetenv("TMPDIR");
}

TEST_F(UpdateFolder, FolderThatCannotBeCreated_ThrowsAFilesystemErrorOfThatName) {
  const tTemporaryFolder parent;
  setenv("TMPDIR", parent.path().c_str(), 1);
  tUpdateFolder folder("name");
  unsetenv("TMPDIR");
  std::ofstream(parent.path() / "name") << "a file";
  try {
    folder.create();
    FAIL() << "nothing is thrown";
  } catch (const std::filesystem::filesystem_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("create_directories"));
  }
}

}  // namespace
}  // namespace nTests
