#include "source/user/preconditions/driveencryption.h"

#include "source/user/location.h"
#include "source/user/preconditions/comownership.h"
#include "source/user/statuscodes.h"
// Needs windows.h first.
#include <wbemcli.h>

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tSourceLocation;

constexpr auto kComNotThere = sessionLocation(2831);
constexpr auto kComSecurityRefused = sessionLocation(2847);
constexpr auto kNoLocator = sessionLocation(2863);
constexpr auto kNamespaceNotReached = sessionLocation(2879);
constexpr auto kQueryFailed = sessionLocation(2912);

constexpr CLSID kLocatorClass = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
constexpr IID kLocatorInterface = {
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

constexpr const OLECHAR* kNamespace = L"ROOT\\CIMV2\\Security\\MicrosoftVolumeEncryption";
constexpr const OLECHAR* kLanguage = L"WQL";
constexpr const OLECHAR* kQuery =
    L"SELECT ProtectionStatus FROM Win32_EncryptableVolume WHERE DriveLetter = 'C:'";
constexpr const OLECHAR* kProperty = L"ProtectionStatus";
constexpr LONG kProtectionOn = 1;

// Once per process: the security that the process has set before is sufficient.
bool isSecurityThere() noexcept {
  const HRESULT result =
      CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                           RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  return SUCCEEDED(result) || result == RPC_E_TOO_LATE;
}

// Each of these steps returns an empty result on failure.
tComPointer<IWbemLocator> createLocator() noexcept {
  void* locator = nullptr;
  tComPointer<IWbemLocator> owner;
  if (SUCCEEDED(CoCreateInstance(kLocatorClass, nullptr, CLSCTX_INPROC_SERVER, kLocatorInterface,
                                 &locator))) {
    *owner.receive() = static_cast<IWbemLocator*>(locator);
  }
  return owner;
}

tComPointer<IWbemServices> connect(IWbemLocator& locator) noexcept {
  const tAutomationText name(kNamespace);
  tComPointer<IWbemServices> services;
  if (!name || FAILED(locator.ConnectServer(name.get(), nullptr, nullptr, nullptr, 0, nullptr,
                                            nullptr, services.receive()))) {
    return {};
  }
  return services;
}

// A server in the same process has no proxy and refuses; the query then fails if it needs the settings.
void allowImpersonation(IWbemServices& services) noexcept {
  static_cast<void>(CoSetProxyBlanket(&services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                      RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                      EOAC_NONE));
}

tComPointer<IEnumWbemClassObject> queryVolumes(IWbemServices& services) noexcept {
  const tAutomationText language(kLanguage);
  const tAutomationText query(kQuery);
  tComPointer<IEnumWbemClassObject> volumes;
  if (!language || !query ||
      FAILED(services.ExecQuery(language.get(), query.get(),
                                WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                volumes.receive()))) {
    return {};
  }
  return volumes;
}

bool isFirstProtected(IEnumWbemClassObject& volumes) noexcept {
  tComPointer<IWbemClassObject> volume;
  ULONG count = 0;
  if (FAILED(volumes.Next(static_cast<LONG>(WBEM_INFINITE), 1, volume.receive(), &count)) ||
      count == 0 || !volume) {
    return false;
  }
  tAutomationValue protection;
  return SUCCEEDED(volume->Get(kProperty, 0, protection.receive(), nullptr, nullptr)) &&
         protection.isNumber(kProtectionOn);
}

bool fail(zoerr::Status& status, const tSourceLocation& location) noexcept {
  status.set(kUpdateEnvironment, location);
  return false;
}

}  // namespace

bool IsSystemDriveEncrypted(zoerr::Status& status) noexcept {
  if (status.isError()) {
    return false;
  }
  const tComUse com(COINIT_MULTITHREADED);
  if (!com.isThere()) {
    return fail(status, kComNotThere);
  }
  if (!isSecurityThere()) {
    return fail(status, kComSecurityRefused);
  }
  const auto locator = createLocator();
  if (!locator) {
    return fail(status, kNoLocator);
  }
  const auto services = connect(*locator.get());
  if (!services) {
    return fail(status, kNamespaceNotReached);
  }
  allowImpersonation(*services.get());
  const auto volumes = queryVolumes(*services.get());
  return volumes ? isFirstProtected(*volumes.get()) : fail(status, kQueryFailed);
}

}  // namespace nQUENRA1400
