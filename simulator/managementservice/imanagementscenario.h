#ifndef SIMULATOR_MANAGEMENTSERVICE_IMANAGEMENTSCENARIO_H
#define SIMULATOR_MANAGEMENTSERVICE_IMANAGEMENTSCENARIO_H

#include <windows.h>
// oleauto.h requires windows.h.
#include <oleauto.h>

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
  virtual void objectMade(const char* name) noexcept = 0;
  virtual void objectGone(const char* name) noexcept = 0;
};

}  // namespace nSimulator

#endif
