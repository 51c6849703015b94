#ifndef TESTS_COMPONENT_ZOSMBIOS_TTESTPROVIDER_H
#define TESTS_COMPONENT_ZOSMBIOS_TTESTPROVIDER_H

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_status.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nTests {

// The numbers are part of the interface; tests name them by symbols.
static_assert(QUENRA_STATUS_SMBIOS_NO_STRING == 240050);
static_assert(QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL == -240051);
static_assert(QUENRA_STATUS_SMBIOS_NOT_FOUND == -240052);
static_assert(QUENRA_STATUS_SMBIOS_MALFORMED == -240053);
static_assert(QUENRA_STATUS_SMBIOS_NO_TABLE == -240060);

inline constexpr char kProviderFile[] = "dep_mirror\\deps\\zosmbios\\includes\\czosmbiosprovider";

// A provider with a given table, or with one that its load installs.
class tTestProvider final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
 public:
  tTestProvider() = default;
  explicit tTestProvider(std::span<const uint8_t> table, std::string_view version = "3.4") {
    nZOAPALS100::tStatus status;
    install(table, version, status);
    EXPECT_EQ(status.code, 0);
  }

  // Makes load install a table, or fail.
  void loadWill(std::vector<uint8_t> table) { loadedTable_ = std::move(table); }
  void loadWillFail(int32_t code) { loadCode_ = code; }
  [[nodiscard]] int loads() const { return loads_; }

  void load(nZOAPALS100::tStatus& status) noexcept override {
    ++loads_;
    if (loadCode_ != 0) {
      mergeStatus(status, loadCode_, {"load", 1});
    } else {
      install(loadedTable_, std::string_view("2.8"), status);
    }
  }

 private:
  std::vector<uint8_t> loadedTable_;
  int32_t loadCode_ = 0;
  int loads_ = 0;
};

// The outcome of one getString, compared as a unit.
struct tStringRead {
  int32_t code;
  uint32_t line;
  std::string text;  // in a buffer that is large enough; kUntouched when nothing was stored
  bool operator==(const tStringRead&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const tStringRead& read) {
  return out << "code " << read.code << " of line " << read.line << ", '" << read.text << "'";
}

inline constexpr char kUntouched[] = "untouched";

inline tStringRead readString(nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                              nQUENRA1400::nZOSMBIOS_1_1::tFieldId field, uint32_t instance = 0) {
  std::array<char, 512> buffer{};
  std::string_view(kUntouched).copy(buffer.data(), buffer.size());
  auto size = static_cast<uint32_t>(buffer.size());
  nZOAPALS100::tStatus status;
  provider.getString(field, instance, buffer.data(), &size, status);
  EXPECT_EQ(size, buffer.size()) << "a buffer that is large enough keeps its size";
  if (status.code != 0) {
    EXPECT_STREQ(status.component, "quenra");
    EXPECT_STREQ(status.file, kProviderFile);
  }
  return {status.code, status.line, buffer.data()};
}

}  // namespace nTests

#endif
