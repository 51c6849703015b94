#include "source/user/firmware/decoding/selection.h"

#include <algorithm>
#include <iterator>

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

bool hasAvx2(const tProcessorFeatures& features) noexcept {
  return features.avx2 && features.pclmul && features.popcnt;
}

bool hasAvx2Wide(const tProcessorFeatures& features) noexcept {
  return hasAvx2(features) && features.vpclmulqdq;
}

// Compilers take AVX-512 to include AVX2, and VPCLMULQDQ to include PCLMUL, and use their instructions in
// the same file. A processor may report one without the other: a virtual machine can mask features
// one by one.
bool hasAvx512(const tProcessorFeatures& features) noexcept {
  return hasAvx2(features) && features.avx512f && features.avx512bw && features.avx512vbmi &&
         features.avx512vbmi2 && features.vpclmulqdq;
}

bool always(const tProcessorFeatures&) noexcept {
  return true;
}

constexpr tChoice kChoices[] = {
    {kAvx512Kernels, &hasAvx512},
    {kAvx2WideKernels, &hasAvx2Wide},
    {kAvx2Kernels, &hasAvx2},
    {kPlainKernels, &always},
};

}  // namespace

tProcessorFeatures reportedFeatures() noexcept {
  // Static initialisation may call this before the constructor that reads the features has run.
  __builtin_cpu_init();
  return {
      .popcnt = __builtin_cpu_supports("popcnt") != 0,
      .pclmul = __builtin_cpu_supports("pclmul") != 0,
      .avx2 = __builtin_cpu_supports("avx2") != 0,
      .avx512f = __builtin_cpu_supports("avx512f") != 0,
      .avx512bw = __builtin_cpu_supports("avx512bw") != 0,
      .avx512vbmi = __builtin_cpu_supports("avx512vbmi") != 0,
      .avx512vbmi2 = __builtin_cpu_supports("avx512vbmi2") != 0,
      .vpclmulqdq = __builtin_cpu_supports("vpclmulqdq") != 0,
  };
}

std::span<const tChoice> allKernels() noexcept {
  return kChoices;
}

const tKernels& kernelsFor(const tProcessorFeatures& features) noexcept {
  return std::find_if(std::begin(kChoices), std::prev(std::end(kChoices)),
                      [&features](const tChoice& choice) { return choice.runsWith(features); })
      ->kernels;
}

const tKernels& bestKernels() noexcept {
  return kernelsFor(reportedFeatures());
}

}  // namespace nQUENRA1400::nFirmwareDecoding
