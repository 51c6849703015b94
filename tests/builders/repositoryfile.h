#ifndef TESTS_BUILDERS_REPOSITORYFILE_H
#define TESTS_BUILDERS_REPOSITORYFILE_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nTests {

// The path of a file or a folder of the repository.
[[nodiscard]] std::string repositoryPath(std::string_view path);

// The content of a file of the repository; fails the test when it cannot be read.
[[nodiscard]] std::string contentOf(std::string_view path);

// A file of the repository as lines without their ends; fails the test when it cannot be read.
[[nodiscard]] std::vector<std::string> linesOf(std::string_view path);

// The enumerators of a C header whose names begin with the prefix, with their values.
[[nodiscard]] std::map<std::string, int64_t> enumeratorsOf(std::string_view path,
                                                           std::string_view prefix);

// The rows of the Markdown table under a heading, without its header, as cells without `` ` ``.
[[nodiscard]] std::vector<std::vector<std::string>> tableUnder(std::string_view path,
                                                               std::string_view heading);

}  // namespace nTests

#endif
