// For every processor: tables for decoding, words of eight bytes for the search.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "source/user/firmware/decoding/kernels.h"
#include "source/user/firmware/decoding/plainsteps.h"

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

// The code stores bytes as parts of words.
static_assert(std::endian::native == std::endian::little);

// For each of the four characters of a quad, its six bits at their place in the little-endian word of the
// quad's three bytes. The top byte of the word marks a character that is not Base64.
using tQuadTables = std::array<std::array<uint32_t, 256>, 4>;
constexpr uint32_t kNoQuad = 0xFF000000;

consteval tQuadTables makeQuadTables() {
  tQuadTables tables{};
  for (auto& table : tables) {
    table.fill(kNoQuad);
  }
  for (uint32_t sextet = 0; sextet < kBase64Characters; ++sextet) {
    const auto character = static_cast<uint8_t>(kBase64Alphabet[sextet]);
    tables[0][character] = sextet << 2;
    tables[1][character] = (sextet >> 4) | (sextet & 0xF) << 12;
    tables[2][character] = (sextet >> 2) << 8 | (sextet & 0x3) << 22;
    tables[3][character] = sextet << 16;
  }
  return tables;
}

constexpr auto kQuadTables = makeQuadTables();

uint32_t quadAt(const uint8_t* text) noexcept {
  return kQuadTables[0][text[0]] | kQuadTables[1][text[1]] | kQuadTables[2][text[2]] |
         kQuadTables[3][text[3]];
}

// Decodes quads directly while they have no noise. Otherwise it first removes the noise of a block without
// branches, so that the speed does not depend on its pattern.
class tDecoding {
 public:
  tDecoding(const uint8_t* text, size_t length, uint8_t* data) noexcept
      : text_(text), end_(text + length), data_(data), out_(data), summed_(data) {}

  tDecodedPayload run() noexcept {
    while (text_ != end_) {
      const uint8_t* const start = text_;
      if (pendingCount_ == 0) {
        decodeQuads();
      }
      if (text_ - start < kWorthwhile) {
        stripBlock();
      }
      completeQuad();
      if (out_ - summed_ >= kChunk) {
        updateCrc(kChunk);
      }
    }
    out_ += packSextets(pending_, pendingCount_, out_);
    updateCrc(out_ - summed_);
    return {static_cast<size_t>(out_ - data_), ~crcRegister_};
  }

 private:
  static constexpr size_t kQuad = 4;
  static constexpr ptrdiff_t kWorthwhile = 32;  // characters in clean quads
  static constexpr size_t kBlock = 128;         // characters stripped of noise at a time
  static constexpr int kLookAhead = 16;         // characters among which the next quad may begin
  static constexpr ptrdiff_t kChunk = 1024;     // bytes by which the CRC lags behind
  static constexpr size_t kPairs = kChunk / 6;  // pairs of quads that make a chunk

  [[nodiscard]] size_t remaining() const noexcept { return static_cast<size_t>(end_ - text_); }

  void decodeQuads() noexcept {
    const uint8_t* text = text_;
    uint8_t* out = out_;
    for (size_t pairs = std::min(remaining() / (2 * kQuad), kPairs); pairs > 0; --pairs) {
      const uint32_t first = quadAt(text);
      const uint32_t second = quadAt(text + kQuad);
      if (((first | second) & kNoQuad) != 0) {
        // The second quad is not clean. A line with an odd number of quads ends like this.
        if ((first & kNoQuad) == 0) {
          std::memcpy(out, &first, sizeof first);
          out += 3;
          text += kQuad;
        }
        break;
      }
      // Stores eight bytes, of which six count: the capacity is the length of the text.
      const uint64_t bytes = first | uint64_t{second} << 24;
      std::memcpy(out, &bytes, sizeof bytes);
      out += 6;
      text += 2 * kQuad;
    }
    text_ = text;
    out_ = out;
  }

  void stripBlock() noexcept {
    uint8_t sextets[kQuad + kBlock];
    std::memcpy(sextets, pending_, kQuad);
    const size_t length = std::min(remaining(), kBlock);
    const size_t count = pendingCount_ + extractSextets(text_, length, sextets + pendingCount_);
    text_ += length;
    const size_t packed = count - count % kQuad;
    out_ += packSextets(sextets, packed, out_);
    pendingCount_ = count - packed;
    std::memcpy(pending_, sextets + packed, pendingCount_);
  }

  // Reads single characters until quads are aligned with the text again.
  void completeQuad() noexcept {
    for (int characters = kLookAhead; characters > 0 && text_ != end_ && pendingCount_ < kQuad;
         --characters) {
      const uint32_t sextet = kQuadTables[3][*text_++] >> 16;
      pending_[pendingCount_] = static_cast<uint8_t>(sextet);
      pendingCount_ += sextet < 64 ? 1 : 0;
    }
    if (pendingCount_ == kQuad) {
      out_ += packSextets(pending_, kQuad, out_);
      pendingCount_ = 0;
    }
  }

  void updateCrc(ptrdiff_t bytes) noexcept {
    crcRegister_ = updateRegister(crcRegister_, summed_, static_cast<size_t>(bytes));
    summed_ += bytes;
  }

  const uint8_t* text_;
  const uint8_t* const end_;
  uint8_t* const data_;
  uint8_t* out_;
  const uint8_t* summed_;  // end of the bytes that are in the register
  uint32_t crcRegister_ = kInitialRegister;
  uint8_t pending_[kQuad] = {};  // sextets of an incomplete quad
  size_t pendingCount_ = 0;
};

tDecodedPayload decode(const uint8_t* text, size_t length, uint8_t* data) noexcept {
  return tDecoding(text, length, data).run();
}

constexpr uint64_t everyByte(uint8_t value) noexcept {
  return value * uint64_t{0x0101010101010101};
}

// Returns zero if no byte of the word is zero; otherwise the lowest bit set is in the first zero byte.
constexpr uint64_t zeroBytes(uint64_t word) noexcept {
  return (word - everyByte(0x01)) & ~word & everyByte(0x80);
}

const uint8_t* findByteOrNul(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept {
  const uint64_t bytes = everyByte(byte);
  for (; end - text >= static_cast<ptrdiff_t>(sizeof(uint64_t)); text += sizeof(uint64_t)) {
    uint64_t word = 0;
    std::memcpy(&word, text, sizeof word);
    const uint64_t found = zeroBytes(word) | zeroBytes(word ^ bytes);
    if (found != 0) {
      return text + std::countr_zero(found) / 8;
    }
  }
  return std::find_if(text, end, [byte](uint8_t c) { return c == byte || c == 0; });
}

}  // namespace

const tKernels kPlainKernels{"plain", &decode, &findByteOrNul};

}  // namespace nQUENRA1400::nFirmwareDecoding
