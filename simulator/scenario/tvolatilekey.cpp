#include "simulator/scenario/tvolatilekey.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace nSimulator {
namespace {

constexpr const char* kOwnKey = "Software\\QuenraSimulator";

std::string fullPath(const std::string& path) {
  return std::string(kOwnKey) + '\\' + path;
}

void requireSuccess(LSTATUS result, const std::string& path) {
  if (result != ERROR_SUCCESS) {
    throw std::system_error(static_cast<int>(result), std::system_category(),
                            "registry key " + path);
  }
}

struct tCreatedKey {
  HKEY key;
  bool isNew;
};

tCreatedKey create(const std::string& path) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  requireSuccess(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                 KEY_READ | KEY_WRITE, nullptr, &key, &disposition),
                 path);
  return {key, disposition == REG_CREATED_NEW_KEY};
}

}  // namespace

tVolatileKey::tVolatileKey(const std::string& path) {
  const tCreatedKey created = create(fullPath(path));
  key_ = created.key;
  isNew_ = created.isNew;
}

tVolatileKey::tVolatileKey(tVolatileKey&& other) noexcept
    : key_(std::exchange(other.key_, nullptr)), isNew_(other.isNew_) {}

tVolatileKey::~tVolatileKey() {
  if (key_ != nullptr) {
    RegCloseKey(key_);
  }
}

void tVolatileKey::remove(const std::string& path) {
  const std::string full = fullPath(path);
  const LSTATUS result = RegDeleteTreeA(HKEY_LOCAL_MACHINE, full.c_str());
  if (result != ERROR_FILE_NOT_FOUND) {
    requireSuccess(result, full);
  }
}

void tVolatileKey::setText(const char* name, const std::string& text) {
  const void* const bytes = text.c_str();
  requireSuccess(RegSetValueExA(key_, name, 0, REG_SZ, static_cast<const BYTE*>(bytes),
                                static_cast<DWORD>(text.size() + 1)),
                 name);
}

void tVolatileKey::setNumber(const char* name, uint64_t number) {
  const void* const bytes = &number;
  requireSuccess(
      RegSetValueExA(key_, name, 0, REG_QWORD, static_cast<const BYTE*>(bytes), sizeof number),
      name);
}

std::optional<std::string> tVolatileKey::text(const char* name) const {
  DWORD size = 0;
  if (RegGetValueA(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::string text(size, '\0');
  if (RegGetValueA(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  text.resize(std::min<size_t>(size, text.size()));
  while (!text.empty() && text.back() == '\0') {
    text.pop_back();
  }
  return text;
}

std::optional<uint64_t> tVolatileKey::number(const char* name) const {
  uint64_t number = 0;
  DWORD size = sizeof number;
  return RegGetValueA(key_, nullptr, name, RRF_RT_REG_QWORD, nullptr, &number, &size) ==
                 ERROR_SUCCESS
             ? std::optional(number)
             : std::nullopt;
}

std::vector<std::string> tVolatileKey::children() const {
  std::vector<std::string> names;
  std::array<char, 256> name{};
  for (DWORD index = 0;; ++index) {
    auto size = static_cast<DWORD>(name.size());
    if (RegEnumKeyExA(key_, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      break;
    }
    names.emplace_back(name.data(), size);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace nSimulator
