#include <windows.h>
// Both require windows.h.
#include <objbase.h>
#include <wbemcli.h>

#include "simulator/managementservice/managementobjects.h"
#include "simulator/managementservice/tcomobject.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD model) {
  const tInside inside;
  constexpr auto kCall = tCall::coInitializeEx;
  expectUsual(reserved == nullptr, kCall, "the reserved argument is used");
  expectUsual(model == COINIT_MULTITHREADED || model == COINIT_APARTMENTTHREADED, kCall,
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
  expectUsual(descriptor == nullptr && services == -1 && list == nullptr && reserved1 == nullptr &&
                  list2 == nullptr && reserved3 == nullptr,
              kCall, "the system is to choose everything itself");
  expectUsual(authentication == RPC_C_AUTHN_LEVEL_DEFAULT &&
                  impersonation == RPC_C_IMP_LEVEL_IMPERSONATE && capabilities == EOAC_NONE,
              kCall, "unusual levels");
  if (const auto error = faultPlan().enter(kCall)) {
    return static_cast<HRESULT>(*error);
  }
  if (!com()->isThreadInside()) {
    return CO_E_NOTINITIALIZED;
  }
  return com()->takeSecurity() ? S_OK : RPC_E_TOO_LATE;
}

HRESULT WINAPI CoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context,
                                REFIID interfaceId, LPVOID* object) {
  const tInside inside;
  constexpr auto kCall = tCall::coCreateInstance;
  expectUsual(nSimulator::areEqual(classId, nSimulator::kManagementLocatorClass), kCall,
              "there is only the locator of the management service");
  expectUsual(outer == nullptr && context == CLSCTX_INPROC_SERVER, kCall,
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
  expectUsual(proxy != nullptr && principal == nullptr && identity == nullptr, kCall,
              "the caller's own identity is used");
  expectUsual(authentication == RPC_C_AUTHN_WINNT && authorisation == RPC_C_AUTHZ_NONE &&
                  level == RPC_C_AUTHN_LEVEL_CALL && impersonation == RPC_C_IMP_LEVEL_IMPERSONATE &&
                  capabilities == EOAC_NONE,
              kCall, "unusual levels");
  if (const auto error = faultPlan().enter(kCall)) {
    return static_cast<HRESULT>(*error);
  }
  return S_OK;
}
