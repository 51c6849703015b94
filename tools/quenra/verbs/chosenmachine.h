#ifndef TOOLS_QUENRA_VERBS_CHOSENMACHINE_H
#define TOOLS_QUENRA_VERBS_CHOSENMACHINE_H

#include <optional>

#include "tools/capture/machinerecord.h"
#include "tools/quenra/capture/treplayedmachine.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {

// The machine that a verb shows: that of the capture after --from, else this one.
class tChosenMachine {
 public:
  // Throws tCommandError if the capture cannot be read.
  tChosenMachine(const tArguments& arguments, const tPorts& ports) : ports_(ports) {
    if (const auto path = arguments.optional(nWords::kFrom)) {
      replayed_.emplace(readCapture(*path));
    }
  }
  tChosenMachine(const tChosenMachine&) = delete;
  tChosenMachine& operator=(const tChosenMachine&) = delete;
  ~tChosenMachine() = default;

  [[nodiscard]] iQuenra& library() noexcept {
    return replayed_ ? static_cast<iQuenra&>(replayed_->library) : ports_.library;
  }
  [[nodiscard]] iUpdateFacts& updateFacts() noexcept {
    return replayed_ ? static_cast<iUpdateFacts&>(replayed_->updateFacts) : ports_.updateFacts;
  }
  // The record of a captured machine; null for this one.
  [[nodiscard]] const nCapture::tMachineRecord* record() const noexcept {
    return replayed_ ? &replayed_->record : nullptr;
  }

 private:
  struct tReplayed {
    explicit tReplayed(nCapture::tMachineRecord read) : record(std::move(read)) {}

    nCapture::tMachineRecord record;
    tReplayedLibrary library{record};
    tReplayedUpdateFacts updateFacts{record.updateEnvironment};
  };

  const tPorts& ports_;
  std::optional<tReplayed> replayed_;
};

}  // namespace nCommandLine

#endif
