#include "source/user/update/tupdatefolder.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <filesystem>
#include <system_error>

#include "zoapal/protons/files/windowsu/removetree.h"

namespace nQUENRA1400 {
namespace {

namespace fs = std::filesystem;

constexpr char16_t kSeparator = static_cast<char16_t>(fs::path::preferred_separator);

constexpr bool isLetter(char16_t character) noexcept {
  return (character >= u'A' && character <= u'Z') || (character >= u'a' && character <= u'z');
}

constexpr bool isSeparator(char16_t character) noexcept {
  return character == u'\\' || character == u'/';
}

// Windows takes either separator for the other, also in the two that begin the name of another machine.
constexpr bool isAbsolute(std::u16string_view name) noexcept {
  const bool hasDriveLetter = name.size() >= 2 && isLetter(name[0]) && name[1] == u':';
  return hasDriveLetter || (name.size() >= 2 && isSeparator(name[0]) && isSeparator(name[1]));
}

}  // namespace

std::string randomFolderName() {
  boost::uuids::random_generator_pure generator;
  return boost::uuids::to_string(generator());
}

tUpdateFolder::tUpdateFolder(const std::string& name)
    : path_((fs::temp_directory_path() / name).u16string()) {}

std::u16string tUpdateFolder::pathOf(std::u16string_view fileName) const {
  if (isAbsolute(fileName)) {
    return std::u16string(fileName);
  }
  // The operator of std::filesystem::path would leave the folder for a name with one leading separator.
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
  nZOAPAL000::removeTree(path_);
}

}  // namespace nQUENRA1400
