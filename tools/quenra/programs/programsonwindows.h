#ifndef TOOLS_QUENRA_PROGRAMS_PROGRAMSONWINDOWS_H
#define TOOLS_QUENRA_PROGRAMS_PROGRAMSONWINDOWS_H

#include "tools/quenra/programs/programs.h"

namespace nCommandLine {

// Programs run in a process group of their own, which receives no Ctrl-C, and in a job object, which ends
// them with this process.
class tPrograms final : public iPrograms {
 public:
  [[nodiscard]] std::unique_ptr<iProgram> start(std::span<const std::string> words,
                                                tProgramOutput output,
                                                std::error_code& failure) override;
};

}  // namespace nCommandLine

#endif
