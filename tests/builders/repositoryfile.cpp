#include "tests/builders/repositoryfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>

namespace nTests {
namespace {

std::string trimmed(const std::string& text) {
  const size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? ""
                                    : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream stream(line.substr(1));
  for (std::string cell; std::getline(stream, cell, '|');) {
    std::erase(cell, '`');
    cells.push_back(trimmed(cell));
  }
  return cells;
}

}  // namespace

std::string repositoryPath(std::string_view path) {
  return std::string(REPOSITORY_FOLDER "/").append(path);
}

std::string contentOf(std::string_view path) {
  std::ifstream file(repositoryPath(path), std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> linesOf(std::string_view path) {
  std::ifstream file(repositoryPath(path));
  EXPECT_TRUE(file.is_open()) << path;
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::map<std::string, int64_t> enumeratorsOf(std::string_view path, std::string_view prefix) {
  static const std::regex kEnumerator(
      R"(^\s*([A-Z][A-Z0-9_]*)\s*=\s*(-?(?:0x)?[0-9A-Fa-f]+)\s*,?$)");
  std::map<std::string, int64_t> enumerators;
  for (const std::string& line : linesOf(path)) {
    std::smatch match;
    if (std::regex_match(line, match, kEnumerator) && match[1].str().starts_with(prefix)) {
      enumerators[match[1]] = std::stoll(match[2], nullptr, 0);
    }
  }
  EXPECT_FALSE(enumerators.empty()) << path;
  return enumerators;
}

std::vector<std::vector<std::string>> tableUnder(std::string_view path, std::string_view heading) {
  const std::vector<std::string> lines = linesOf(path);
  auto line = std::ranges::find(lines, heading);
  EXPECT_NE(line, lines.end()) << heading;
  line = std::find_if(line, lines.end(), [](const auto& text) { return text.starts_with('|'); });
  std::vector<std::vector<std::string>> rows;
  for (; line != lines.end() && line->starts_with('|'); ++line) {
    rows.push_back(cellsOf(*line));
  }
  EXPECT_GT(rows.size(), 2u) << heading;
  rows.erase(rows.begin(),
             rows.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(2, rows.size())));
  return rows;
}

}  // namespace nTests
