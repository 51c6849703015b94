#include "tools/quenra/output/table.h"

#include <gtest/gtest.h>

#include <sstream>

namespace nTests {
namespace {

using namespace nCommandLine;

std::string written(const tTable& table, bool styles) {
  std::ostringstream stream;
  table.write(stream, tStyle(styles));
  return stream.str();
}

TEST(Table, ColumnsAreAlignedWithoutTrailingSpaces) {
  tTable table;
  table.addRow({"a", "long cell", "x"});
  table.addRow({"longer", "b", "y"});
  table.addRow({"c", "d", ""});
  EXPECT_EQ(written(table, false),
            "a       long cell  x\n"
            "longer  b          y\n"
            "c       d\n");
}

TEST(Table, EmptyCellInTheMiddle_KeepsItsColumn) {
  tTable table;
  table.addRow({"a", "", "x"});
  table.addRow({"b", "unit", "y"});
  EXPECT_EQ(written(table, false), "a        x\nb  unit  y\n");
}

TEST(Table, TextBeyondAscii_IsAlignedByCharacters) {
  tTable table;
  table.addRow({"\xC3\xA9\xC3\xA9", "x"});
  table.addRow({"ab", "y"});
  EXPECT_EQ(written(table, false), "\xC3\xA9\xC3\xA9  x\nab  y\n");
}

TEST(Table, HeadingsAreSetApart) {
  tTable table;
  table.addHeading("One");
  table.addRow({"a", "x"});
  table.addHeading("Two");
  table.addRow({"b", "y"});
  EXPECT_EQ(written(table, false), "One\na  x\n\nTwo\nb  y\n");
}

TEST(Table, Styles_AreUsedWhereTheyAreTakenOnly) {
  tTable table;
  table.addHeading("One");
  table.addRow({"a", "x"}, true);
  EXPECT_EQ(written(table, true), "\x1B[1mOne\x1B[0m\na  \x1B[2mx\x1B[0m\n");
  EXPECT_EQ(written(table, false), "One\na  x\n");
}

}  // namespace
}  // namespace nTests
