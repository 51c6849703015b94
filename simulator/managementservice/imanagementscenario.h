#ifndef SIMULATOR_MANAGEMENTSERVICE_IMANAGEMENTSCENARIO_H
#define SIMULATOR_MANAGEMENTSERVICE_IMANAGEMENTSCENARIO_H

#include <windows.h>
// Needs windows.h first.
#include <oleauto.h>

#include <optional>
#include <vector>

namespace nSimulator {

// What a program asks of the management service, in this order.
enum class tManagementStep : uint8_t {
  locator,   // create the locator
  connect,   // connect to a namespace
  query,     // run a query
  result,    // take the next object of its result
  property,  // read a property of the object
};

// The protection status of a volume, as a variant of some type holds it.
struct tVolume {
  VARTYPE type = VT_I4;
  LONG protection = 0;
};

// How the management service behaves. The service's objects share it; any thread.
class iManagementScenario {
 public:
  virtual ~iManagementScenario() = default;

  // A step begins: an error with which it shall fail.
  [[nodiscard]] virtual std::optional<HRESULT> failureOf(tManagementStep step) noexcept = 0;
  // The volumes that match the query.
  [[nodiscard]] virtual std::vector<tVolume> volumes() = 0;
  // A method that has no behaviour, or an argument that no program gives; the result to answer with.
  [[nodiscard]] virtual HRESULT unforeseen(const char* what, HRESULT usual) noexcept = 0;
  // An object of the service has come to be, or has been released for the last time.
  virtual void objectMade(const char* name) noexcept = 0;
  virtual void objectGone(const char* name) noexcept = 0;
};

}  // namespace nSimulator

#endif
