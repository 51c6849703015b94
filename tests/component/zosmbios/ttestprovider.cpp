#include "tests/component/zosmbios/ttestprovider.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

namespace nTests {

using nZOAPALS100::tStatus;

tTestProvider::tTestProvider(std::span<const uint8_t> table, std::string_view version) {
  tStatus status;
  install(table, version, status);
  EXPECT_EQ(status.code, 0);
}

void tTestProvider::load(tStatus& status) noexcept {
  ++loads_;
  if (loadCode_ != 0) {
    mergeStatus(status, loadCode_, {"load", 1});
  } else {
    install(loadedTable_, std::string_view("2.8"), status);
  }
}

tStringRead readString(nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                       nQUENRA1400::nZOSMBIOS_1_1::tFieldId field, uint32_t instance) {
  std::array<char, 512> buffer{};
  std::string_view(kUntouched).copy(buffer.data(), buffer.size());
  auto size = static_cast<uint32_t>(buffer.size());
  tStatus status;
  provider.getString(field, instance, buffer.data(), &size, status);
  EXPECT_EQ(size, buffer.size()) << "a buffer that is large enough keeps its size";
  if (status.code != 0) {
    EXPECT_STREQ(status.component, "quenra");
    EXPECT_STREQ(status.file, kProviderFile);
  }
  return {status.code, status.line, buffer.data()};
}

std::ostream& operator<<(std::ostream& out, const tStringRead& read) {
  return out << "code " << read.code << " of line " << read.line << ", '" << read.text << "'";
}

}  // namespace nTests
