#include "source/user/update/tupdatefolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace nTests {
namespace {

using nQUENRA1400::tUpdateFolder;

TEST(UpdateFolder, NameWithTwoLeadingSeparatorsOfEitherKind_IsAbsolute) {
  const tUpdateFolder folder;
  for (const std::u16string_view name :
       {u"\\\\srv\\share\\x.cap", u"//srv/share/x.cap", u"\\/srv/share/x.cap",
        u"/\\srv/share/x.cap", u"\\\\?\\C:\\x.cap", u"\\\\", u"//"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST(UpdateFolder, NameWithADriveLetter_IsAbsolute) {
  const tUpdateFolder folder;
  for (const std::u16string_view name : {u"C:\\x.cap", u"z:/x.cap", u"D:x.cap", u"A:"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST(UpdateFolder, AnyOtherName_LiesInTheFolder) {
  const tUpdateFolder folder;
  for (const std::u16string_view name : {u"x.cap", u"\\x.cap", u"/x.cap", u"sub\\\\x.cap",
                                         u"1:x.cap", u"\u00C4:x.cap", u"C", u"\\", u"x//y"}) {
    const std::u16string path = folder.pathOf(name);
    EXPECT_TRUE(path.ends_with(name));
    EXPECT_TRUE(path.starts_with(std::filesystem::temp_directory_path().u16string()));
    EXPECT_GT(path.size(), name.size() + 36);
  }
}

}  // namespace
}  // namespace nTests
