#ifndef TOOLS_QUENRA_OUTPUT_TABLE_H
#define TOOLS_QUENRA_OUTPUT_TABLE_H

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

// Bold and faint text for terminals. Returns texts unchanged if styles are disabled.
class tStyle {
 public:
  explicit tStyle(bool enabled) noexcept : enabled_(enabled) {}

  [[nodiscard]] std::string heading(std::string_view text) const;
  [[nodiscard]] std::string faint(std::string_view text) const;

 private:
  bool enabled_;
};

// Rows of cells. `write` aligns the columns, two spaces apart.
class tTable {
 public:
  // `faint` shows the last cell as less important.
  void addRow(std::vector<std::string> cells, bool faint = false);
  // Prints a heading before the next row, separated by an empty line unless it is the first.
  void addHeading(std::string_view heading);
  void write(std::ostream& stream, const tStyle& style) const;

 private:
  struct tRow {
    std::vector<std::string> cells;
    std::string heading;
    bool faint = false;
  };

  [[nodiscard]] std::vector<size_t> columnWidths() const;
  static void writeRow(std::ostream& stream, const tStyle& style, const tRow& row,
                       const std::vector<size_t>& widths);

  std::vector<tRow> rows_;
};

}  // namespace nCommandLine

#endif
