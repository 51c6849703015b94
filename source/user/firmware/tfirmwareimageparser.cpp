#include "source/user/firmware/tfirmwareimageparser.h"

#include <new>
#include <span>
#include <string_view>
#include <utility>

#include "source/user/failuresites.h"
#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/timagetext.h"
#include "source/user/firmware/tsectionheaders.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nQUENRA1400 {
namespace {

using nFirmwareDecoding::tKernels;
using nZOAPAL000::tByteBuffer;
using zoerr::Status;

constexpr auto kImageWraps = parserLocation(163);

void checkHeader(const tSectionHeader& header, Status& status) noexcept {
  if (header.headerVersion != nImageFormat::kHeaderVersion) {
    report(nImageSites::kUnknownHeaderVersion, status);
  } else if (header.updateType != nImageFormat::kFirmwareUpdate &&
             header.updateType != nImageFormat::kCapsuleUpdate) {
    report(nImageSites::kUnknownUpdateType, status);
  } else if (header.targetDevice != nImageFormat::kBios &&
             header.targetDevice != nImageFormat::kMarten &&
             header.targetDevice != nImageFormat::kSafeMode) {
    report(nImageSites::kUnknownTargetDevice, status);
  }
}

// Returns the Base64 text of the section between a header end and the next section. Its ends are computed
// in 32 bits, which is part of the format: without an empty line that ends the header, the payload
// begins with the fourth byte of the image; in an image beyond 4 GiB, the lower 32 bits of a position
// count. When the empty line belongs to a later section, the length wraps around. A text that would
// leave the image is reported as a payload too large for the memory.
std::span<const uint8_t> payloadText(const tImageText& text, size_t headerEnd, size_t nextSection,
                                     Status& status) noexcept {
  const auto separator = static_cast<uint32_t>(headerEnd);
  const auto start = static_cast<uint32_t>(separator + nImageFormat::kHeaderEnd.size());
  const auto end = static_cast<uint32_t>(nextSection == tImageText::kNotFound ? text.size()  //
                                                                              : nextSection);
  const uint32_t length = end - start;
  if (length > text.size() - start) {
    report(nImageSites::kPayloadNotAllocated, status);
    return {};
  }
  return {text.bytes() + start, length};
}

// Returns the decoded bytes, checked against the header; null with an error in the status.
tByteBuffer decodePayload(std::span<const uint8_t> text, const tSectionHeader& header,
                          const tKernels& kernels, Status& status) noexcept {
  nZOAPALS100::tStatus allocating;
  tByteBuffer data = nZOAPAL000::allocateBytes(text.size(), allocating);
  if (data == nullptr) {
    report(nImageSites::kPayloadNotAllocated, status);
    return nullptr;
  }
  const auto decoded = kernels.decode(text.data(), text.size(), data.get());
  if (decoded.byteCount != header.byteCount) {
    report(nImageSites::kByteCountDiffers, status);
    return nullptr;
  }
  if (decoded.crc != header.crc) {
    report(nImageSites::kCrcDiffers, status);
    return nullptr;
  }
  return data;
}

void addRecord(tFirmwarePayloads& records, const tSectionHeader& header, tByteBuffer data) {
  const tFirmwarePayload record{nullptr, header.byteCount, header.targetDevice, header.version,
                                header.targetFileName};
  tFirmwarePayload& added =
      header.isAppliedFirst() ? records.emplace_front(record) : records.emplace_back(record);
  // Only a record that is in the list can hand its data to the caller.
  added.data = data.release();
}

void parseSections(tFirmwarePayloads& records, const tImageText& text, const tKernels& kernels,
                   Status& status) {
  tSectionHeaders headers(text);
  tForwardSearch headerEnd(nImageFormat::kHeaderEnd);
  size_t section = headers.findSection(0);
  while (section != tImageText::kNotFound) {
    const tSectionHeader header = headers.read(section, status);
    checkHeader(header, status);
    if (status.isError()) {
      return;
    }
    const size_t nextSection = headers.findSection(section + 1);
    const auto payload = payloadText(text, headerEnd.find(text, section), nextSection, status);
    if (status.isError()) {
      return;
    }
    tByteBuffer data = decodePayload(payload, header, kernels, status);
    if (status.isError()) {
      return;
    }
    addRecord(records, header, std::move(data));
    section = nextSection;
  }
}

}  // namespace

void tFirmwareImageParser::Parse(tFirmwarePayloads& records, const void* imageText,
                                 size_t imageSize, zoerr::Status& status) const noexcept {
  if (status.isError()) {
    return;
  }
  const size_t size = imageText == nullptr ? 0 : imageSize;
  if (size > UINTPTR_MAX - reinterpret_cast<uintptr_t>(imageText)) {
    status.set(nZOAPALS100::kInvalidParameter, kImageWraps);
    return;
  }
  try {
    parseSections(records, {imageText, size, kernels_}, kernels_, status);
  } catch (const std::bad_alloc&) {
    report(nImageSites::kPayloadNotAllocated, status);
  }
}

}  // namespace nQUENRA1400
