// The in-process server: the exports that COM calls to create the service's locator.
#include <atomic>
#include <exception>
#include <memory>

#include "simulator/managementservice/managementobjects.h"
#include "simulator/managementservice/tcomobject.h"
#include "simulator/scenario/servicescenarios.h"
#include "simulator/scenario/wine.h"

namespace nSimulator {
namespace {

constexpr IID kFactoryInterface = {1, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constinit std::atomic<long> inUse = 0;

// COM unloads its servers with the last thread that uses COM and loads them again with the next.
// Each load would leak: the C++ runtime in this library does not free its memory for exceptions.
void stayLoaded() noexcept {
  HMODULE own = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     static_cast<LPCSTR>(static_cast<const void*>(&inUse)), &own);
}

struct tStep {
  const char* name;
  HRESULT failure;
};
// Indexed by tManagementStep.
constexpr tStep kSteps[] = {
    {"locator", static_cast<HRESULT>(WBEM_E_INITIALIZATION_FAILURE)},
    {"connect", static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE)},
    {"query", static_cast<HRESULT>(WBEM_E_INVALID_QUERY)},
    {"result", static_cast<HRESULT>(WBEM_E_INVALID_CLASS)},
    {"property", static_cast<HRESULT>(WBEM_E_NOT_FOUND)},
};

// Reads the machine's scenario on every call.
class tMachineScenario final : public iManagementScenario {
 public:
  std::optional<HRESULT> failureOf(tManagementStep step) noexcept override {
    const tStep& known = kSteps[static_cast<size_t>(step)];
    try {
      return encryption().failingStep == known.name ? std::optional(known.failure) : std::nullopt;
    } catch (const std::exception&) {
      return static_cast<HRESULT>(WBEM_E_FAILED);
    }
  }
  std::vector<tVolume> volumes() override {
    const std::string protection = encryption().protection;
    if (protection == "no-volume") {
      return {};
    }
    const LONG status = protection == "on" ? 1 : protection == "unknown" ? 2 : 0;
    return {{VT_I4, status}};
  }
  HRESULT unforeseen(const char*, HRESULT usual) noexcept override { return usual; }
  void objectCreated(const char*) noexcept override { ++inUse; }
  void objectDestroyed(const char*) noexcept override { --inUse; }
};

class tClassFactory final : public tComObject<IClassFactory> {
 public:
  explicit tClassFactory(const std::shared_ptr<iManagementScenario>& scenario)
      : tComObject(scenario, "IClassFactory", kFactoryInterface) {}
  ~tClassFactory() override = default;

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID interfaceId,
                                           void** object) override {
    *object = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    HRESULT result = S_OK;
    IWbemLocator* const locator = makeLocator(scenario(), result);
    if (locator != nullptr) {
      result = locator->QueryInterface(interfaceId, object);
      locator->Release();
    }
    return result;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    inUse += lock ? 1 : -1;
    return S_OK;
  }
};

}  // namespace
}  // namespace nSimulator

namespace {

HRESULT createFactory(REFIID interfaceId, LPVOID* object) noexcept {
  try {
    auto* const factory = nSimulator::makeComObject<nSimulator::tClassFactory>(
        std::make_shared<nSimulator::tMachineScenario>());
    const HRESULT result = factory->QueryInterface(interfaceId, object);
    factory->Release();
    return result;
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, LPVOID* object) {
  *object = nullptr;
  nSimulator::stayLoaded();
  if (!nSimulator::areEqual(classId, nSimulator::kManagementLocatorClass)) {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  return nSimulator::answerUnderWine(nSimulator::runsUnderWine(), CLASS_E_CLASSNOTAVAILABLE,
                                     [&] { return createFactory(interfaceId, object); });
}

STDAPI DllCanUnloadNow() {
  return nSimulator::inUse == 0 ? S_OK : S_FALSE;
}
