#ifndef SIMULATOR_ENVIRONMENT_TVOLATILEKEY_H
#define SIMULATOR_ENVIRONMENT_TVOLATILEKEY_H

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nSimulator {

// A key of the registry under which the simulated machine keeps what every process has to find. It is
// volatile: switching the machine off forgets it. Failures are std::system_error.
class tVolatileKey {
 public:
  // Opens the key, or makes it. The path is below the machine's own key, without a backslash at
  // either end.
  explicit tVolatileKey(const std::string& path);
  tVolatileKey(tVolatileKey&& other) noexcept;
  tVolatileKey& operator=(tVolatileKey&&) = delete;
  ~tVolatileKey();

  // Removes the key and all below it. Nothing happens where there is none.
  static void remove(const std::string& path);

  void setText(const char* name, const std::string& text);
  void setNumber(const char* name, uint64_t number);
  // None when there is no such value, or one of another type.
  [[nodiscard]] std::optional<std::string> text(const char* name) const;
  [[nodiscard]] std::optional<uint64_t> number(const char* name) const;

  // Whether this object has made the key.
  [[nodiscard]] bool isNew() const noexcept { return isNew_; }
  // The keys directly below, by name.
  [[nodiscard]] std::vector<std::string> children() const;

 private:
  HKEY key_ = nullptr;
  bool isNew_ = false;
};

}  // namespace nSimulator

#endif
