#include "source/user/preconditions/preconditions.h"

#include <gtest/gtest.h>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

class ModelFamilies : public testing::Test {
 protected:
  // The answer for a machine with this product name; null means that it has none.
  bool isOutside(const char* name) {
    tReferenceTable table;
    if (name == nullptr) {
      table.structure(0x01).byte(0x05, 0);
    } else {
      table.structure(0x01).text(0x05, name);
    }
    tInstalledProvider provider;
    nZOAPALS100::tStatus installing;
    provider.install(table.build(), {}, installing);
    EXPECT_EQ(installing.code, 0);
    return nQUENRA1400::IsOutsideModelFamilies(provider);
  }
};

TEST_F(ModelFamilies, NamesOfTheFamilies_AreInside) {
  for (const char* name :
       {"qmod-7100", "qmod-7105", "qmod-7109", "qbrd-4302", "qbrd-4312", "qbrd-4392"}) {
    EXPECT_FALSE(isOutside(name)) << name;
  }
}

TEST_F(ModelFamilies, NamesThatOnlyResembleThem_AreOutside) {
  for (const char* name :
       {"qmod-71050", "QMOD-7105", "xqmod-7105", "qmod-7105 ", " qmod-7105", "qmod-710a",
        "qmod-710", "qbrd-4313", "qbrd-43122", "qbrd-43x2", "qmod-7105\n"}) {
    EXPECT_TRUE(isOutside(name)) << name;
  }
}

TEST_F(ModelFamilies, NameThatCannotBeRead_CountsAsInside) {
  EXPECT_FALSE(isOutside(nullptr)) << "no name";
  EXPECT_TRUE(isOutside(std::string(128, 'x').c_str())) << "the longest name there is";
  EXPECT_FALSE(isOutside(std::string(129, 'x').c_str())) << "one character too many";
}

TEST_F(ModelFamilies, WithoutATable_CountsAsInside) {
  tInstalledProvider provider;
  EXPECT_FALSE(nQUENRA1400::IsOutsideModelFamilies(provider));
}

}  // namespace
}  // namespace nTests
