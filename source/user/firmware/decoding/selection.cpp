#include "source/user/firmware/decoding/selection.h"

#include <algorithm>
#include <iterator>

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

bool hasAvx512() noexcept {
  return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
         __builtin_cpu_supports("avx512vbmi") != 0 && __builtin_cpu_supports("avx512vbmi2") != 0 &&
         __builtin_cpu_supports("vpclmulqdq") != 0 && __builtin_cpu_supports("popcnt") != 0;
}

bool hasAvx2() noexcept {
  return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("pclmul") != 0 &&
         __builtin_cpu_supports("popcnt") != 0;
}

bool always() noexcept {
  return true;
}

constexpr tChoice kChoices[] = {
    {kAvx512Kernels, &hasAvx512},
    {kAvx2Kernels, &hasAvx2},
    {kPlainKernels, &always},
};

}  // namespace

std::span<const tChoice> allKernels() noexcept {
  // The answers may be asked for before those constructors have run that find them.
  __builtin_cpu_init();
  return kChoices;
}

const tKernels& bestKernels() noexcept {
  const auto choices = allKernels();
  return std::find_if(choices.begin(), std::prev(choices.end()),
                      [](const tChoice& choice) { return choice.isSupported(); })
      ->kernels;
}

}  // namespace nQUENRA1400::nFirmwareDecoding
