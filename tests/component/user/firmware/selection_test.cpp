#include "source/user/firmware/decoding/selection.h"

#include <gtest/gtest.h>

namespace nTests {
namespace {

using namespace nQUENRA1400::nFirmwareDecoding;

constexpr tProcessorFeatures kEverything{.popcnt = true,
                                         .pclmul = true,
                                         .avx2 = true,
                                         .avx512f = true,
                                         .avx512bw = true,
                                         .avx512vbmi = true,
                                         .avx512vbmi2 = true,
                                         .vpclmulqdq = true};

tProcessorFeatures without(bool tProcessorFeatures::*feature) {
  tProcessorFeatures features = kEverything;
  features.*feature = false;
  return features;
}

TEST(KernelSelection, ProcessorWithEveryFeature_GetsAvx512) {
  EXPECT_EQ(&kernelsFor(kEverything), &kAvx512Kernels);
}

TEST(KernelSelection, ProcessorWithoutAnyPartOfAvx512_GetsAvx2) {
  for (const auto feature : {&tProcessorFeatures::avx512f, &tProcessorFeatures::avx512bw,
                             &tProcessorFeatures::avx512vbmi, &tProcessorFeatures::avx512vbmi2,
                             &tProcessorFeatures::vpclmulqdq}) {
    EXPECT_EQ(&kernelsFor(without(feature)), &kAvx2Kernels);
  }
}

TEST(KernelSelection, Avx512WithoutAnyPartOfAvx2_GetsPlain) {
  for (const auto feature :
       {&tProcessorFeatures::avx2, &tProcessorFeatures::pclmul, &tProcessorFeatures::popcnt}) {
    EXPECT_EQ(&kernelsFor(without(feature)), &kPlainKernels);
  }
}

TEST(KernelSelection, ProcessorOfAvx2Only_GetsAvx2) {
  EXPECT_EQ(&kernelsFor({.popcnt = true, .pclmul = true, .avx2 = true}), &kAvx2Kernels);
}

TEST(KernelSelection, ProcessorWithoutFeatures_GetsPlain) {
  EXPECT_EQ(&kernelsFor({}), &kPlainKernels);
}

TEST(KernelSelection, ThisMachine_GetsTheFirstSupported) {
  for (const tChoice& choice : allKernels()) {
    if (choice.isSupported()) {
      EXPECT_EQ(&bestKernels(), &choice.kernels);
      return;
    }
  }
  FAIL() << "the last ones run on every processor";
}

}  // namespace
}  // namespace nTests
