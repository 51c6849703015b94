#include "tests/fakewindows/com.h"

#include <windows.h>
// Require windows.h.
#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "simulator/managementservice/managementobjects.h"
#include "simulator/managementservice/tcomobject.h"
#include "tests/fakewindows/faultplan.h"

namespace nFakeWindows {
namespace {

// Without the C library, whose wchar_t has another size.
constexpr size_t lengthOf(const WCHAR* text) noexcept {
  size_t length = 0;
  while (text[length] != 0) {
    ++length;
  }
  return length;
}

using nSimulator::tManagementStep;
using nSimulator::tVolume;

// The calling thread's use of COM.
struct tThread {
  DWORD model = 0;
  unsigned uses = 0;
};
thread_local tThread thisThread;

tCall callOf(tManagementStep step) {
  switch (step) {
    case tManagementStep::locator:
      return tCall::coCreateInstance;
    case tManagementStep::connect:
      return tCall::connectServer;
    case tManagementStep::query:
      return tCall::execQuery;
    case tManagementStep::result:
      return tCall::next;
    case tManagementStep::property:
      return tCall::get;
  }
  stop("tCom", "a step that is not known");
}

}  // namespace

const std::shared_ptr<tCom>& com() {
  static const auto theCom = std::make_shared<tCom>();
  return theCom;
}

void tCom::reset() {
  const std::lock_guard lock(mutex_);
  hasSecurity_ = false;
  volumes_ = {{VT_I4, 0}};
}

void tCom::useVolumes(std::vector<tVolume> volumes) {
  const std::lock_guard lock(mutex_);
  volumes_ = std::move(volumes);
}

void tCom::initialiseSecurity() {
  const std::lock_guard lock(mutex_);
  hasSecurity_ = true;
}

std::vector<std::string> tCom::open() {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> lines(objects_.begin(), objects_.end());
  lines.insert(lines.end(), texts_.size(), "text");
  lines.insert(lines.end(), values_.size(), "value");
  lines.insert(lines.end(), threads_, "thread that uses COM");
  return lines;
}

HRESULT tCom::enterThread(DWORD model) {
  if (thisThread.uses != 0 && thisThread.model != model) {
    return RPC_E_CHANGED_MODE;
  }
  thisThread.model = model;
  ++thisThread.uses;
  if (thisThread.uses > 1) {
    return S_FALSE;
  }
  const std::lock_guard lock(mutex_);
  ++threads_;
  return S_OK;
}

void tCom::leaveThread() {
  if (thisThread.uses == 0) {
    stop("CoUninitialize", "the thread does not use COM");
  }
  --thisThread.uses;
  if (thisThread.uses != 0) {
    return;
  }
  const std::lock_guard lock(mutex_);
  --threads_;
  if (threads_ == 0 && !objects_.empty()) {
    stop("CoUninitialize", "COM ends while an object is alive");
  }
}

bool tCom::isThreadInside() const {
  return thisThread.uses != 0;
}

bool tCom::claimSecurity() {
  const std::lock_guard lock(mutex_);
  return !std::exchange(hasSecurity_, true);
}

void tCom::textAllocated(const void* text) {
  const std::lock_guard lock(mutex_);
  texts_.insert(text);
}

bool tCom::textFreed(const void* text) {
  const std::lock_guard lock(mutex_);
  return texts_.erase(text) != 0;
}

void tCom::valueInitialised(const void* value) {
  const std::lock_guard lock(mutex_);
  values_.insert(value);
}

bool tCom::valueCleared(const void* value) {
  const std::lock_guard lock(mutex_);
  return values_.erase(value) != 0;
}

std::optional<HRESULT> tCom::failureOf(tManagementStep step) noexcept {
  const tInside inside;
  const auto error = faultPlan().enter(callOf(step));
  return error ? std::optional(static_cast<HRESULT>(*error)) : std::nullopt;
}

std::vector<tVolume> tCom::volumes() {
  const tInside inside;
  const std::lock_guard lock(mutex_);
  return volumes_;
}

HRESULT tCom::unforeseen(const char* what, HRESULT) noexcept {
  stop("the management service", what);
}

void tCom::objectCreated(const char* name) noexcept {
  const tInside inside;
  const std::lock_guard lock(mutex_);
  objects_.insert(name);
}

void tCom::objectDestroyed(const char* name) noexcept {
  const tInside inside;
  const std::lock_guard lock(mutex_);
  objects_.erase(objects_.find(name));
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD model) {
  const tInside inside;
  constexpr auto kCall = tCall::coInitializeEx;
  expectSupported(reserved == nullptr, kCall, "the reserved argument is used");
  expectSupported(model == COINIT_MULTITHREADED || model == COINIT_APARTMENTTHREADED, kCall,
                  "unusual flags");
  if (const auto error = faultPlan().enter(kCall)) {
    return static_cast<HRESULT>(*error);
  }
  return com()->enterThread(model);
}

void WINAPI CoUninitialize(void) {
  const tInside inside;
  static_cast<void>(faultPlan().enter(tCall::coUninitialize));
  com()->leaveThread();
}

HRESULT WINAPI CoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                    SOLE_AUTHENTICATION_SERVICE* list, void* reserved1,
                                    DWORD authentication, DWORD impersonation, void* list2,
                                    DWORD capabilities, void* reserved3) {
  const tInside inside;
  constexpr auto kCall = tCall::coInitializeSecurity;
  expectSupported(descriptor == nullptr && services == -1 && list == nullptr &&
                      reserved1 == nullptr && list2 == nullptr && reserved3 == nullptr,
                  kCall, "the system is to choose everything itself");
  expectSupported(authentication == RPC_C_AUTHN_LEVEL_DEFAULT &&
                      impersonation == RPC_C_IMP_LEVEL_IMPERSONATE && capabilities == EOAC_NONE,
                  kCall, "unusual levels");
  if (const auto error = faultPlan().enter(kCall)) {
    return static_cast<HRESULT>(*error);
  }
  if (!com()->isThreadInside()) {
    return CO_E_NOTINITIALIZED;
  }
  return com()->claimSecurity() ? S_OK : RPC_E_TOO_LATE;
}

HRESULT WINAPI CoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context,
                                REFIID interfaceId, LPVOID* object) {
  const tInside inside;
  constexpr auto kCall = tCall::coCreateInstance;
  expectSupported(nSimulator::areEqual(classId, nSimulator::kManagementLocatorClass), kCall,
                  "there is only the locator of the management service");
  expectSupported(outer == nullptr && context == CLSCTX_INPROC_SERVER, kCall,
                  "the locator is a server in the process");
  *object = nullptr;
  if (!com()->isThreadInside()) {
    return CO_E_NOTINITIALIZED;
  }
  HRESULT result = S_OK;
  IWbemLocator* const locator = nSimulator::makeLocator(com(), result);
  if (locator != nullptr) {
    result = locator->QueryInterface(interfaceId, object);
    locator->Release();
  }
  return result;
}

HRESULT WINAPI CoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorisation,
                                 OLECHAR* principal, DWORD level, DWORD impersonation,
                                 RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
  const tInside inside;
  constexpr auto kCall = tCall::coSetProxyBlanket;
  expectSupported(proxy != nullptr && principal == nullptr && identity == nullptr, kCall,
                  "the caller's own identity is used");
  expectSupported(authentication == RPC_C_AUTHN_WINNT && authorisation == RPC_C_AUTHZ_NONE &&
                      level == RPC_C_AUTHN_LEVEL_CALL &&
                      impersonation == RPC_C_IMP_LEVEL_IMPERSONATE && capabilities == EOAC_NONE,
                  kCall, "unusual levels");
  if (const auto error = faultPlan().enter(kCall)) {
    return static_cast<HRESULT>(*error);
  }
  return S_OK;
}

namespace {

// The size of an automation text in bytes precedes its first character.
constexpr size_t kPrefix = sizeof(uint32_t) / sizeof(OLECHAR);

}  // namespace

BSTR WINAPI SysAllocString(const OLECHAR* text) {
  const tInside inside;
  constexpr auto kCall = tCall::sysAllocString;
  expectSupported(text != nullptr, kCall, "no text");
  if (faultPlan().enter(kCall)) {
    return nullptr;
  }
  const size_t length = lengthOf(text);
  auto* const memory = new OLECHAR[kPrefix + length + 1]();
  const auto bytes = static_cast<uint32_t>(length * sizeof(OLECHAR));
  std::memcpy(memory, &bytes, sizeof bytes);
  std::copy_n(text, length, memory + kPrefix);
  com()->textAllocated(memory + kPrefix);
  return memory + kPrefix;
}

void WINAPI SysFreeString(BSTR text) {
  const tInside inside;
  if (text == nullptr) {
    return;
  }
  if (!com()->textFreed(text)) {
    stop("SysFreeString", "not an automation text, or one that was freed");
  }
  delete[](text - kPrefix);
}

void WINAPI VariantInit(VARIANT* value) {
  const tInside inside;
  *value = VARIANT{};
  com()->valueInitialised(value);
}

HRESULT WINAPI VariantClear(VARIANT* value) {
  const tInside inside;
  if (!com()->valueCleared(value)) {
    stop("VariantClear", "a value that was not initialised");
  }
  if (V_VT(value) == VT_BSTR) {
    SysFreeString(V_BSTR(value));
  }
  *value = VARIANT{};
  return S_OK;
}
