#include "tests/fakewindows/com.h"

#include <objbase.h>

#include <utility>

#include "tests/fakewindows/unusual.h"

namespace nFakeWindows {
namespace {

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

bool tCom::takeSecurity() {
  const std::lock_guard lock(mutex_);
  return !std::exchange(hasSecurity_, true);
}

void tCom::textMade(const void* text) {
  const std::lock_guard lock(mutex_);
  texts_.insert(text);
}

bool tCom::textGone(const void* text) {
  const std::lock_guard lock(mutex_);
  return texts_.erase(text) != 0;
}

void tCom::valueMade(const void* value) {
  const std::lock_guard lock(mutex_);
  values_.insert(value);
}

bool tCom::valueGone(const void* value) {
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

void tCom::objectMade(const char* name) noexcept {
  const tInside inside;
  const std::lock_guard lock(mutex_);
  objects_.insert(name);
}

void tCom::objectGone(const char* name) noexcept {
  const tInside inside;
  const std::lock_guard lock(mutex_);
  objects_.erase(objects_.find(name));
}

}  // namespace nFakeWindows
