#include "simulator/managementservice/managementobjects.h"

#include <new>
#include <utility>

#include "simulator/managementservice/tcomobject.h"
#include "simulator/managementservice/unusedmethods.h"

namespace nSimulator {
namespace {

using tScenario = std::shared_ptr<iManagementScenario>;

constexpr IID kLocatorInterface = {
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
constexpr IID kServicesInterface = {
    0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};
constexpr IID kVolumesInterface = {
    0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};
constexpr IID kVolumeInterface = {
    0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

constexpr const OLECHAR* kNamespace = L"ROOT\\CIMV2\\Security\\MicrosoftVolumeEncryption";
constexpr const OLECHAR* kLanguage = L"WQL";
constexpr const OLECHAR* kQuery =
    L"SELECT ProtectionStatus FROM Win32_EncryptableVolume WHERE DriveLetter = 'C:'";
constexpr const OLECHAR* kProperty = L"ProtectionStatus";

// Without the C library, whose wchar_t has another size in native builds. False if `text` is null.
constexpr bool isText(const WCHAR* text, const WCHAR* expected) noexcept {
  if (text == nullptr) {
    return false;
  }
  while (*text == *expected && *text != 0) {
    ++text;
    ++expected;
  }
  return *text == *expected;
}

// The service's codes have an enumeration type instead of HRESULT.
constexpr HRESULT resultOf(WBEMSTATUS status) noexcept {
  return static_cast<HRESULT>(status);
}

// Creates the object that a method returns.
template <class Object, class Interface, class... Arguments>
HRESULT returnNew(Interface** place, Arguments&&... arguments) noexcept {
  try {
    *place = makeComObject<Object>(std::forward<Arguments>(arguments)...);
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

class tVolumeObject final : public tComObject<tUnusedVolume> {
 public:
  tVolumeObject(const tScenario& scenario, const tVolume& volume)
      : tComObject(scenario, "IWbemClassObject", kVolumeInterface), volume_(volume) {}
  ~tVolumeObject() override = default;

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                LONG* flavor) override {
    if (!isText(name, kProperty) || flags != 0 || type != nullptr || flavor != nullptr) {
      return scenario()->unforeseen("IWbemClassObject::Get: another property or form",
                                    resultOf(WBEM_E_NOT_FOUND));
    }
    if (const auto failure = scenario()->failureOf(tManagementStep::property)) {
      return *failure;
    }
    V_VT(value) = volume_.type;
    if (volume_.type == VT_BSTR) {
      V_BSTR(value) = SysAllocString(L"1");
    } else {
      V_I4(value) = volume_.protection;
    }
    return S_OK;
  }

 private:
  HRESULT unused(const char* method) noexcept override {
    return scenario()->unforeseen(method, E_NOTIMPL);
  }

  tVolume volume_;
};

class tVolumes final : public tComObject<tUnusedVolumes> {
 public:
  explicit tVolumes(const tScenario& scenario)
      : tComObject(scenario, "IEnumWbemClassObject", kVolumesInterface),
        volumes_(scenario->volumes()) {}
  ~tVolumes() override = default;

  HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                 ULONG* returned) override {
    *returned = 0;
    *objects = nullptr;
    if (timeout != static_cast<LONG>(WBEM_INFINITE) || count != 1) {
      return scenario()->unforeseen("IEnumWbemClassObject::Next: with a limit, or not one object",
                                    resultOf(WBEM_E_INVALID_PARAMETER));
    }
    if (const auto failure = scenario()->failureOf(tManagementStep::result)) {
      return *failure;
    }
    if (next_ == volumes_.size()) {
      return resultOf(WBEM_S_FALSE);
    }
    const HRESULT result = returnNew<tVolumeObject>(objects, scenario(), volumes_[next_]);
    if (SUCCEEDED(result)) {
      ++next_;
      *returned = 1;
    }
    return result;
  }

 private:
  HRESULT unused(const char* method) noexcept override {
    return scenario()->unforeseen(method, E_NOTIMPL);
  }

  std::vector<tVolume> volumes_;
  size_t next_ = 0;
};

class tServices final : public tComObject<tUnusedServices> {
 public:
  explicit tServices(const tScenario& scenario)
      : tComObject(scenario, "IWbemServices", kServicesInterface) {}
  ~tServices() override = default;

  HRESULT STDMETHODCALLTYPE ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* context,
                                      IEnumWbemClassObject** result) override {
    *result = nullptr;
    if (!isText(language, kLanguage) || !isText(query, kQuery) || context != nullptr ||
        flags != (WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY)) {
      return scenario()->unforeseen("IWbemServices::ExecQuery: another query or form",
                                    resultOf(WBEM_E_INVALID_QUERY));
    }
    if (const auto failure = scenario()->failureOf(tManagementStep::query)) {
      return *failure;
    }
    return returnNew<tVolumes>(result, scenario());
  }

 private:
  HRESULT unused(const char* method) noexcept override {
    return scenario()->unforeseen(method, E_NOTIMPL);
  }
};

class tLocator final : public tComObject<IWbemLocator> {
 public:
  explicit tLocator(const tScenario& scenario)
      : tComObject(scenario, "IWbemLocator", kLocatorInterface) {}
  ~tLocator() override = default;

  HRESULT STDMETHODCALLTYPE ConnectServer(BSTR name, BSTR user, BSTR password, BSTR locale,
                                          LONG flags, BSTR authority, IWbemContext* context,
                                          IWbemServices** services) override {
    *services = nullptr;
    const bool asCaller = user == nullptr && password == nullptr && locale == nullptr &&
                          flags == 0 && authority == nullptr && context == nullptr;
    if (!asCaller || !isText(name, kNamespace)) {
      return scenario()->unforeseen("IWbemLocator::ConnectServer: another namespace or caller",
                                    resultOf(WBEM_E_INVALID_NAMESPACE));
    }
    if (const auto failure = scenario()->failureOf(tManagementStep::connect)) {
      return *failure;
    }
    return returnNew<tServices>(services, scenario());
  }
};

}  // namespace

IWbemLocator* makeLocator(const std::shared_ptr<iManagementScenario>& scenario,
                          HRESULT& result) noexcept {
  IWbemLocator* locator = nullptr;
  const auto failure = scenario->failureOf(tManagementStep::locator);
  result = failure ? *failure : returnNew<tLocator>(&locator, scenario);
  return locator;
}

}  // namespace nSimulator
