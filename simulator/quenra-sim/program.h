#ifndef SIMULATOR_QUENRA_SIM_PROGRAM_H
#define SIMULATOR_QUENRA_SIM_PROGRAM_H

namespace nSimulator {

// Runs quenra-sim with the arguments of `main` and returns its exit code. Unless `isWine`, every
// verb fails.
[[nodiscard]] int runProgram(int argumentCount, char** arguments, bool isWine);

}  // namespace nSimulator

#endif
