#ifndef SIMULATOR_MANAGEMENTSERVICE_TCOMOBJECT_H
#define SIMULATOR_MANAGEMENTSERVICE_TCOMOBJECT_H

#include <atomic>
#include <cstring>
#include <memory>
#include <utility>

#include "simulator/managementservice/managementobjects.h"

namespace nSimulator {

[[nodiscard]] inline bool areEqual(const GUID& left, const GUID& right) noexcept {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

// Reference counting of an object of the service: it owns itself while it has references. `Base` is
// the interface, or a class that implements its other methods.
template <class Base>
class tComObject : public Base {
 public:
  tComObject(const tComObject&) = delete;
  tComObject& operator=(const tComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    constexpr IID kUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    if (!areEqual(id, kUnknown) && !areEqual(id, interfaceId_)) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      // Destroys the object at the end of this scope.
      const std::shared_ptr<tComObject> self = std::move(self_);
    }
    return left;
  }

 protected:
  tComObject(std::shared_ptr<iManagementScenario> scenario, const char* name,
             const IID& interfaceId)
      : Base(), scenario_(std::move(scenario)), name_(name), interfaceId_(interfaceId) {
    scenario_->objectCreated(name_);
  }
  virtual ~tComObject() { scenario_->objectDestroyed(name_); }

  [[nodiscard]] const std::shared_ptr<iManagementScenario>& scenario() const noexcept {
    return scenario_;
  }

 private:
  template <class Object, class... Arguments>
  friend Object* makeComObject(Arguments&&... arguments);

  std::shared_ptr<iManagementScenario> scenario_;
  const char* name_;
  IID interfaceId_;
  std::atomic<ULONG> references_ = 1;
  std::shared_ptr<tComObject> self_;
};

// Creates an object with one reference, owned by the caller. Throws std::bad_alloc.
template <class Object, class... Arguments>
[[nodiscard]] Object* makeComObject(Arguments&&... arguments) {
  const auto object = std::make_shared<Object>(std::forward<Arguments>(arguments)...);
  object->self_ = object;
  return object.get();
}

}  // namespace nSimulator

#endif
