#include "tools/quenra/output/table.h"

#include <algorithm>

#include "tools/commandline/utf8text.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kGap = "  ";
constexpr std::string_view kBold = "\x1B[1m";
constexpr std::string_view kFaint = "\x1B[2m";
constexpr std::string_view kReset = "\x1B[0m";

std::string styled(std::string_view style, std::string_view text, bool enabled) {
  std::string result(text);
  if (enabled) {
    result.insert(0, style).append(kReset);
  }
  return result;
}

}  // namespace

std::string tStyle::heading(std::string_view text) const {
  return styled(kBold, text, enabled_);
}

std::string tStyle::faint(std::string_view text) const {
  return styled(kFaint, text, enabled_);
}

void tTable::addRow(std::vector<std::string> cells, bool faint) {
  rows_.push_back({std::move(cells), "", faint});
}

void tTable::addHeading(std::string_view heading) {
  rows_.push_back({{}, std::string(heading), false});
}

void tTable::write(std::ostream& stream, const tStyle& style) const {
  const std::vector<size_t> widths = columnWidths();
  bool first = true;
  for (const tRow& row : rows_) {
    if (!row.heading.empty()) {
      stream << (first ? "" : "\n") << style.heading(row.heading) << '\n';
    } else {
      writeRow(stream, style, row, widths);
    }
    first = false;
  }
}

std::vector<size_t> tTable::columnWidths() const {
  std::vector<size_t> widths;
  for (const tRow& row : rows_) {
    widths.resize(std::max(widths.size(), row.cells.size()));
    for (size_t column = 0; column < row.cells.size(); ++column) {
      widths[column] = std::max(widths[column], widthOf(row.cells[column]));
    }
  }
  return widths;
}

void tTable::writeRow(std::ostream& stream, const tStyle& style, const tRow& row,
                      const std::vector<size_t>& widths) {
  std::string line;
  size_t end = 0;  // end of the text so far, without trailing padding
  for (size_t column = 0; column < row.cells.size(); ++column) {
    const std::string& cell = row.cells[column];
    const bool last = column + 1 == row.cells.size();
    line.append(last && row.faint ? style.faint(cell) : cell);
    end = cell.empty() ? end : line.size();
    line.append(widths[column] - widthOf(cell), ' ').append(kGap);
  }
  stream << line.substr(0, end) << '\n';
}

}  // namespace nCommandLine
