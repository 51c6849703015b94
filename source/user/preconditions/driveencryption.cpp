#include <windows.h>
// These need windows.h first.
#include <objbase.h>
#include <oleauto.h>
#include <wbemcli.h>

#include "source/user/failuresites.h"
#include "source/user/preconditions/preconditions.h"

namespace nQUENRA1400 {
namespace {

// ---- Ownership of COM objects and values ----

// Initialises COM for the calling thread for the lifetime of the object. Declare it before every pointer,
// so that it ends after them. Does not change a thread that is initialised for another model.
class tComUse {
 public:
  explicit tComUse(COINIT model) noexcept : result_(CoInitializeEx(nullptr, model)) {}
  tComUse(const tComUse&) = delete;
  tComUse& operator=(const tComUse&) = delete;
  ~tComUse() {
    if (isInitialised()) {
      CoUninitialize();
    }
  }

  // A thread that used COM before succeeds as well, and needs CoUninitialize as well.
  [[nodiscard]] bool isInitialised() const noexcept { return SUCCEEDED(result_); }

 private:
  HRESULT result_;
};

// Owns one reference to an object.
template <class Interface>
class tComPointer {
 public:
  tComPointer() noexcept = default;
  tComPointer(tComPointer&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
  tComPointer& operator=(tComPointer&&) = delete;
  ~tComPointer() {
    if (object_ != nullptr) {
      object_->Release();
    }
  }

  [[nodiscard]] Interface* operator->() const noexcept { return object_; }
  [[nodiscard]] Interface* get() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // For a function that stores a reference. Call it once.
  [[nodiscard]] Interface** receive() noexcept { return &object_; }

 private:
  Interface* object_ = nullptr;
};

// A text for automation interfaces. Empty if memory is short.
class tAutomationText {
 public:
  explicit tAutomationText(const OLECHAR* text) noexcept : text_(SysAllocString(text)) {}
  tAutomationText(const tAutomationText&) = delete;
  tAutomationText& operator=(const tAutomationText&) = delete;
  ~tAutomationText() { SysFreeString(text_); }

  [[nodiscard]] BSTR get() const noexcept { return text_; }
  explicit operator bool() const noexcept { return text_ != nullptr; }

 private:
  BSTR text_;
};

// Owns a value of any type, with its content.
class tAutomationValue {
 public:
  tAutomationValue() noexcept { VariantInit(&value_); }
  tAutomationValue(const tAutomationValue&) = delete;
  tAutomationValue& operator=(const tAutomationValue&) = delete;
  ~tAutomationValue() { VariantClear(&value_); }

  // For a function that stores a value.
  [[nodiscard]] VARIANT* receive() noexcept { return &value_; }

  // True if the value is that number, as a signed or unsigned 32-bit number.
  [[nodiscard]] bool isNumber(LONG number) const noexcept {
    return (V_VT(&value_) == VT_I4 && V_I4(&value_) == number) ||
           (V_VT(&value_) == VT_UI4 && V_UI4(&value_) == static_cast<ULONG>(number));
  }

 private:
  VARIANT value_;
};

// ---- The query ----

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
bool isSecurityInitialised() noexcept {
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

bool fail(zoerr::Status& status, const tFailureSite& site) noexcept {
  report(site, status);
  return false;
}

}  // namespace

bool IsSystemDriveEncrypted(zoerr::Status& status) noexcept {
  if (status.isError()) {
    return false;
  }
  const tComUse com(COINIT_MULTITHREADED);
  if (!com.isInitialised()) {
    return fail(status, nUpdateSites::kComNotInitialised);
  }
  if (!isSecurityInitialised()) {
    return fail(status, nUpdateSites::kComSecurityRefused);
  }
  const auto locator = createLocator();
  if (!locator) {
    return fail(status, nUpdateSites::kNoLocator);
  }
  const auto services = connect(*locator.get());
  if (!services) {
    return fail(status, nUpdateSites::kNamespaceNotReached);
  }
  allowImpersonation(*services.get());
  const auto volumes = queryVolumes(*services.get());
  return volumes ? isFirstProtected(*volumes.get()) : fail(status, nUpdateSites::kQueryFailed);
}

}  // namespace nQUENRA1400
