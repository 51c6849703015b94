#ifndef SIMULATOR_SCENARIO_TVOLATILEKEY_H
#define SIMULATOR_SCENARIO_TVOLATILEKEY_H

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nSimulator {

// A registry key with state of the simulated machine that all processes share. It is volatile:
// switching the machine off deletes it. Members throw std::system_error on failure.
class tVolatileKey {
 public:
  // Opens or creates the key. The path is relative to the machine's own key, without a backslash at
  // either end.
  explicit tVolatileKey(const std::string& path);
  tVolatileKey(tVolatileKey&& other) noexcept;
  tVolatileKey& operator=(tVolatileKey&&) = delete;
  ~tVolatileKey();

  // Removes the key with its subkeys. Does nothing if it does not exist.
  static void remove(const std::string& path);

  void setText(const char* name, const std::string& text);
  void setNumber(const char* name, uint64_t number);
  // None if the value does not exist or has another type.
  [[nodiscard]] std::optional<std::string> text(const char* name) const;
  [[nodiscard]] std::optional<uint64_t> number(const char* name) const;

  // True if this object created the key.
  [[nodiscard]] bool isNew() const noexcept { return isNew_; }
  // The names of the direct subkeys, sorted.
  [[nodiscard]] std::vector<std::string> children() const;

 private:
  HKEY key_ = nullptr;
  bool isNew_ = false;
};

}  // namespace nSimulator

#endif
