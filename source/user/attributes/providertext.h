#ifndef SOURCE_USER_ATTRIBUTES_PROVIDERTEXT_H
#define SOURCE_USER_ATTRIBUTES_PROVIDERTEXT_H

#include <array>
#include <cstdint>
#include <string_view>

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// A complete text of the SMBIOS table. The provider returns no string of more than kLongestString
// characters, so that the text fits on the stack and nothing is allocated.
class tProviderText {
 public:
  tProviderText(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, nZOSMBIOS_1_1::tFieldId field,
                uint32_t instance) noexcept {
    auto size = static_cast<uint32_t>(characters_.size());
    nZOAPALS100::tStatus status;
    provider.getString(field, instance, characters_.data(), &size, status);
    result_ = status.code;
  }

  // The provider's code: 0 when the text has been read; else the text is empty.
  [[nodiscard]] int32_t result() const noexcept { return result_; }
  [[nodiscard]] std::string_view view() const noexcept { return characters_.data(); }

 private:
  std::array<char, nZOSMBIOS_1_1::cZoSmBiosProvider::kLongestString + 1> characters_{};
  int32_t result_ = 0;
};

}  // namespace nQUENRA1400

#endif
