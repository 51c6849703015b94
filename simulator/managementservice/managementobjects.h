#ifndef SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H
#define SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H

#include <windows.h>
// These require windows.h.
#include <oleauto.h>
#include <wbemcli.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace nSimulator {

// The steps of a query to the management service, in their order.
enum class tManagementStep : uint8_t {
  locator,   // create the locator
  connect,   // connect to a namespace
  query,     // run a query
  result,    // fetch the next object of its result
  property,  // read a property of the object
};

// The protection status of a volume, and the type of the variant that returns it.
struct tVolume {
  VARTYPE type = VT_I4;
  LONG protection = 0;
};

// The behaviour of the management service, shared by its objects. Called on any thread.
class iManagementScenario {
 public:
  virtual ~iManagementScenario() = default;

  // Called at the beginning of a step. Returns the error with which the step fails, if any.
  [[nodiscard]] virtual std::optional<HRESULT> failureOf(tManagementStep step) noexcept = 0;
  // The volumes that match the query.
  [[nodiscard]] virtual std::vector<tVolume> volumes() = 0;
  // Called for an unimplemented method or an unexpected argument. Returns the result of the call.
  [[nodiscard]] virtual HRESULT unforeseen(const char* what, HRESULT usual) noexcept = 0;
  // Called when an object of the service is created, and after its last release.
  virtual void objectCreated(const char* name) noexcept = 0;
  virtual void objectDestroyed(const char* name) noexcept = 0;
};

inline constexpr CLSID kManagementLocatorClass = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

// Creates the locator of the management service, which knows the namespace of the volume encryption
// and one query, for the protection of drive C:. The caller owns the reference. Returns null, with
// the error in `result`, if the scenario fails the step or memory is short.
[[nodiscard]] IWbemLocator* makeLocator(const std::shared_ptr<iManagementScenario>& scenario,
                                        HRESULT& result) noexcept;

}  // namespace nSimulator

#endif
