#ifndef TESTS_FAKEWINDOWS_COM_H
#define TESTS_FAKEWINDOWS_COM_H

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "simulator/managementservice/managementobjects.h"

namespace nFakeWindows {

// COM of the fake Windows, with the management service as its only class. Tracks the threads that
// use it and the objects that exist. Any thread.
class tCom final : public nSimulator::iManagementScenario {
 public:
  // Removes the security; sets the protection of drive C: to off.
  void reset();

  // Sets the volumes that the service returns for the next query.
  void useVolumes(std::vector<nSimulator::tVolume> volumes);

  // Initialises security as another part of the process would.
  void initialiseSecurity();

  // One line for each object, text and value that exists, and for each thread that uses COM.
  [[nodiscard]] std::vector<std::string> open();

  // Called by the functions of the fake.
  [[nodiscard]] HRESULT enterThread(DWORD model);
  void leaveThread();
  [[nodiscard]] bool isThreadInside() const;
  [[nodiscard]] bool claimSecurity();
  void textAllocated(const void* text);
  [[nodiscard]] bool textFreed(const void* text);
  void valueInitialised(const void* value);
  [[nodiscard]] bool valueCleared(const void* value);

  [[nodiscard]] std::optional<HRESULT> failureOf(
      nSimulator::tManagementStep step) noexcept override;
  [[nodiscard]] std::vector<nSimulator::tVolume> volumes() override;
  [[nodiscard]] HRESULT unforeseen(const char* what, HRESULT usual) noexcept override;
  void objectCreated(const char* name) noexcept override;
  void objectDestroyed(const char* name) noexcept override;

 private:
  std::mutex mutex_;
  unsigned threads_ = 0;
  bool hasSecurity_ = false;
  std::vector<nSimulator::tVolume> volumes_;
  std::multiset<std::string> objects_;
  std::set<const void*> texts_;
  std::set<const void*> values_;
};

[[nodiscard]] const std::shared_ptr<tCom>& com();

}  // namespace nFakeWindows

#endif
