#ifndef TESTS_FAKEWINDOWS_COM_H
#define TESTS_FAKEWINDOWS_COM_H

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "simulator/managementservice/imanagementscenario.h"

namespace nFakeWindows {

// COM under the fake Windows, with the management service as its only class: which threads use it,
// and what is alive. Any thread.
class tCom final : public nSimulator::iManagementScenario {
 public:
  // No security yet, and drive C: with its protection off.
  void reset();

  // The volumes that the service has for the next query.
  void useVolumes(std::vector<nSimulator::tVolume> volumes);

  // Another part of the process initialises security first.
  void initialiseSecurity();

  // One line for each thing that is alive: objects, texts, values, threads that use COM.
  [[nodiscard]] std::vector<std::string> open();

  // For the functions of the fake.
  [[nodiscard]] HRESULT enterThread(DWORD model);
  void leaveThread();
  [[nodiscard]] bool isThreadInside() const;
  [[nodiscard]] bool takeSecurity();
  void textMade(const void* text);
  [[nodiscard]] bool textGone(const void* text);
  void valueMade(const void* value);
  [[nodiscard]] bool valueGone(const void* value);

  [[nodiscard]] std::optional<HRESULT> failureOf(
      nSimulator::tManagementStep step) noexcept override;
  [[nodiscard]] std::vector<nSimulator::tVolume> volumes() override;
  [[nodiscard]] HRESULT unforeseen(const char* what, HRESULT usual) noexcept override;
  void objectMade(const char* name) noexcept override;
  void objectGone(const char* name) noexcept override;

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
