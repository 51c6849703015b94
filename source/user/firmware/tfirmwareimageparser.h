#ifndef SOURCE_USER_FIRMWARE_TFIRMWAREIMAGEPARSER_H
#define SOURCE_USER_FIRMWARE_TFIRMWAREIMAGEPARSER_H

#include <cstddef>

#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/tfirmwarepayload.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Splits a firmware image into its sections, and checks and decodes each. No state; any number of
// threads may share one.
class tFirmwareImageParser {
 public:
  explicit tFirmwareImageParser(
      const nFirmwareDecoding::tKernels& kernels = nFirmwareDecoding::bestKernels()) noexcept
      : kernels_(kernels) {}

  // Adds a record for each section, in the order of application: firmware of the BIOS and driver
  // packages (".inf") go to the front of the list, everything else to its end. Text ends at its first
  // NUL, the last payload where the image does.
  //
  // Stops at the first failure; the records added before it stay. The caller frees the data of all.
  // Does nothing when the status holds an error.
  void Parse(tFirmwarePayloads& records, const void* imageText, size_t imageSize,
             zoerr::Status& status) const noexcept;

 private:
  const nFirmwareDecoding::tKernels& kernels_;
};

}  // namespace nQUENRA1400

#endif
