#ifndef SOURCE_USER_FIRMWARE_TFIRMWAREIMAGEPARSER_H
#define SOURCE_USER_FIRMWARE_TFIRMWAREIMAGEPARSER_H

#include <cstddef>

#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/tfirmwarepayload.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Splits a firmware image into its sections, and checks and decodes each. It has no state: any number of
// threads may share one object.
class tFirmwareImageParser {
 public:
  explicit tFirmwareImageParser(
      const nFirmwareDecoding::tKernels& kernels = nFirmwareDecoding::bestKernels()) noexcept
      : kernels_(kernels) {}

  // Adds a record for each section, in the order of application: BIOS firmware and driver packages
  // (".inf") go to the front of the list, everything else to its end. Text ends at its first NUL, the
  // last payload at the end of the image. A null image has no sections, whatever its size.
  //
  // Stops at the first failure; the records added before it stay. The caller frees the data of all.
  // Reads nothing and reports kInvalidParameter when the image wraps around the address space. Does
  // nothing when the status holds an error. Time and memory are proportional to the image and the
  // payloads it returns.
  void Parse(tFirmwarePayloads& records, const void* imageText, size_t imageSize,
             zoerr::Status& status) const noexcept;

 private:
  const nFirmwareDecoding::tKernels& kernels_;
};

}  // namespace nQUENRA1400

#endif
