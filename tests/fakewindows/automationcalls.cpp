#include <windows.h>
// Requires windows.h.
#include <oleauto.h>

#include <algorithm>
#include <cstring>

#include "simulator/managementservice/widetext.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

// The size of an automation text in bytes precedes its first character.
constexpr size_t kPrefix = sizeof(uint32_t) / sizeof(OLECHAR);

}  // namespace

BSTR WINAPI SysAllocString(const OLECHAR* text) {
  const tInside inside;
  constexpr auto kCall = tCall::sysAllocString;
  expectUsual(text != nullptr, kCall, "no text");
  if (faultPlan().enter(kCall)) {
    return nullptr;
  }
  const size_t length = nSimulator::lengthOf(text);
  auto* const memory = new OLECHAR[kPrefix + length + 1]();
  const auto bytes = static_cast<uint32_t>(length * sizeof(OLECHAR));
  std::memcpy(memory, &bytes, sizeof bytes);
  std::copy_n(text, length, memory + kPrefix);
  com()->textMade(memory + kPrefix);
  return memory + kPrefix;
}

void WINAPI SysFreeString(BSTR text) {
  const tInside inside;
  if (text == nullptr) {
    return;
  }
  if (!com()->textGone(text)) {
    stop("SysFreeString", "not an automation text, or one that was freed");
  }
  delete[](text - kPrefix);
}

void WINAPI VariantInit(VARIANT* value) {
  const tInside inside;
  *value = VARIANT{};
  com()->valueMade(value);
}

HRESULT WINAPI VariantClear(VARIANT* value) {
  const tInside inside;
  if (!com()->valueGone(value)) {
    stop("VariantClear", "a value that was not initialised");
  }
  if (V_VT(value) == VT_BSTR) {
    SysFreeString(V_BSTR(value));
  }
  *value = VARIANT{};
  return S_OK;
}
