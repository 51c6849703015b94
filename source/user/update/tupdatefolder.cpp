#include "source/user/update/tupdatefolder.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <filesystem>
#include <system_error>

namespace nQUENRA1400 {
namespace {

namespace fs = std::filesystem;

constexpr char16_t kSeparator = static_cast<char16_t>(fs::path::preferred_separator);

std::string randomName() {
  boost::uuids::random_generator_pure generator;
  return boost::uuids::to_string(generator());
}

constexpr bool isLetter(char16_t character) noexcept {
  return (character >= u'A' && character <= u'Z') || (character >= u'a' && character <= u'z');
}

bool standsForItself(std::u16string_view name) noexcept {
  const bool hasDriveLetter = name.size() >= 2 && isLetter(name[0]) && name[1] == u':';
  return hasDriveLetter || name.starts_with(u"\\\\") || name.starts_with(u"//");
}

}  // namespace

tUpdateFolder::tUpdateFolder() : path_((fs::temp_directory_path() / randomName()).u16string()) {}

std::u16string tUpdateFolder::pathOf(std::u16string_view fileName) const {
  if (standsForItself(fileName)) {
    return std::u16string(fileName);
  }
  // Not by the rules of paths, to which some names with a separator in front are of another place.
  std::u16string joined = path_;
  joined.push_back(kSeparator);
  joined.append(fileName);
  return joined;
}

void tUpdateFolder::create() const {
  const fs::path path(path_);
  std::error_code error;
  fs::create_directories(path, error);
  if (error) {
    throw fs::filesystem_error("create_directories", path, error);
  }
}

void tUpdateFolder::remove() const noexcept {
  try {
    std::error_code ignored;
    fs::remove_all(fs::path(path_), ignored);
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): it stays then
  }
}

}  // namespace nQUENRA1400
