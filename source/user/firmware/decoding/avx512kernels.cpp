// For processors with AVX-512 (VBMI2) and carry-less multiplication of whole registers. Everything
// here has internal linkage, and nothing is included that defines functions: see kernels.h.
#include <immintrin.h>

#include "source/user/firmware/decoding/kernels.h"
#include "source/user/firmware/decoding/plainsteps.h"

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

constexpr size_t kRegister = 64;
constexpr size_t kGroup = 4 * kRegister;       // sextets packed at a time...
constexpr size_t kGroupBytes = 3 * kRegister;  // ...to so many bytes
constexpr size_t kRound = 2048;                // characters translated before they are packed
constexpr size_t kPrefetch = 4096;             // bytes of text ahead
// Bytes of data ahead. Cache lines must be fetched before they are written, and the processor does not
// predict these.
constexpr size_t kPrefetchData = 2048;

struct alignas(kRegister) tBytes {
  uint8_t at[kRegister];
};

__m512i load(const void* from) noexcept {
  return _mm512_loadu_si512(from);
}

// Uses the caches for large payloads too: bypassing them is a tenth faster into memory that is in use
// already, but a fifth slower into new pages, which payloads always have.
void store(uint8_t* to, __m512i value) noexcept {
  _mm512_storeu_si512(to, value);
}

// The first `count` characters; NULs for the others, which are not read.
__m512i loadFirst(const uint8_t* text, size_t count) noexcept {
  return _mm512_maskz_loadu_epi8(_cvtu64_mask64(~uint64_t{0} >> (kRegister - count)), text);
}

// ---- Characters to sextets ----

// The sextets of 128 characters. Characters that are not Base64 have the top bit set.
struct tSextets {
  tBytes lower, upper;
};

consteval tSextets makeSextets() {
  tSextets table{};
  for (uint8_t c = 0; c < 64; ++c) {
    const bool isDigit = c >= '0' && c <= '9';
    table.lower.at[c] = static_cast<uint8_t>(isDigit    ? c - '0' + 52
                                             : c == '+' ? 62
                                             : c == '/' ? 63
                                                        : 0x80);
    const char letter = static_cast<char>(c + 64);
    table.upper.at[c] = static_cast<uint8_t>(letter >= 'A' && letter <= 'Z'   ? letter - 'A'
                                             : letter >= 'a' && letter <= 'z' ? letter - 'a' + 26
                                                                              : 0x80);
  }
  return table;
}
constexpr tSextets kSextets = makeSextets();

// Appends the sextets of a register of characters, and changes up to 64 bytes after them. It removes noise
// without a branch, so that neither its amount nor its pattern matters.
uint8_t* appendSextets(uint8_t* to, __m512i characters) noexcept {
  const __m512i sextets =
      _mm512_permutex2var_epi8(load(&kSextets.lower), characters, load(&kSextets.upper));
  const __mmask64 noise = _mm512_movepi8_mask(_mm512_or_si512(sextets, characters));
  const __mmask64 valid = _knot_mask64(noise);
  store(to, _mm512_maskz_compress_epi8(valid, sextets));
  return to + _mm_popcnt_u64(_cvtmask64_u64(valid));
}

// ---- The CRC ----

// Twelve lanes of 16 bytes, as big-endian numbers. Before the rest of the data, they give the same CRC as all
// the bytes that they replace.
struct tFolded {
  __m512i first, second, third;
};

// The same constants, and the same reversal, for each lane of a register.
struct alignas(kRegister) tFoldingConstants {
  uint64_t at[8];
};
constexpr uint64_t kLowPart = powerOfX(8 * kGroupBytes);
constexpr uint64_t kHighPart = powerOfX(8 * kGroupBytes + 64);
constexpr tFoldingConstants kOverAGroup = {
    {kLowPart, kHighPart, kLowPart, kHighPart, kLowPart, kHighPart, kLowPart, kHighPart}};

consteval tBytes makeReversal() {
  tBytes reversal{};
  for (uint8_t i = 0; i < kRegister; ++i) {
    reversal.at[i] = static_cast<uint8_t>(15 - i % 16);
  }
  return reversal;
}
constexpr tBytes kReversal = makeReversal();

__m512i lanesReversed(__m512i bytes) noexcept {
  return _mm512_shuffle_epi8(bytes, load(&kReversal));
}

// Moves lanes over the bytes of a group, to the place of the new bytes.
__m512i fold(__m512i lanes, __m512i constants, __m512i bytes) noexcept {
  constexpr int kXorOfAll = 0x96;
  return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(lanes, constants, 0x00),
                                   _mm512_clmulepi64_epi128(lanes, constants, 0x11),
                                   lanesReversed(bytes), kXorOfAll);
}

tFolded beforeData() noexcept {
  const __m512i zero = _mm512_setzero_si512();
  return {zero, zero, _mm512_set_epi64(0, bytesBeforeData(), 0, 0, 0, 0, 0, 0)};
}

uint32_t registerOf(const tFolded& folded) noexcept {
  uint8_t bytes[kGroupBytes];
  store(bytes, lanesReversed(folded.first));
  store(bytes + kRegister, lanesReversed(folded.second));
  store(bytes + 2 * kRegister, lanesReversed(folded.third));
  return updateRegister(0, bytes, sizeof bytes);
}

// ---- Sextets to bytes ----

// Joins four sextets each to a number of 24 bits; 64 sextets make 16 numbers, 48 bytes.
__m512i joinSextets(const uint8_t* sextets) noexcept {
  const __m512i pairs = _mm512_maddubs_epi16(load(sextets), _mm512_set1_epi16(0x0140));
  return _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
}

// The sources of the 64 bytes of a register: the numbers of two neighbours. The first `skipped` bytes are in
// the preceding register.
consteval tBytes makePlaces(unsigned skipped) {
  tBytes places{};
  for (unsigned i = 0; i < kRegister; ++i) {
    const unsigned byte = i + skipped;
    const unsigned number = byte / 3;
    places.at[i] = static_cast<uint8_t>(number * 4 + 2 - byte % 3);
  }
  return places;
}
constexpr tBytes kPlaces[3] = {makePlaces(0), makePlaces(16), makePlaces(32)};

// Packs whole groups, and folds their bytes while they are in registers.
void packGroups(const uint8_t* sextets, size_t groups, uint8_t* out, tFolded& folded) noexcept {
  const __m512i constants = load(&kOverAGroup);
  tFolded crc = folded;
  for (; groups > 0; --groups, sextets += kGroup, out += kGroupBytes) {
    const __m512i numbers0 = joinSextets(sextets);
    const __m512i numbers1 = joinSextets(sextets + kRegister);
    const __m512i numbers2 = joinSextets(sextets + 2 * kRegister);
    const __m512i numbers3 = joinSextets(sextets + 3 * kRegister);
    const __m512i first = _mm512_permutex2var_epi8(numbers0, load(&kPlaces[0]), numbers1);
    const __m512i second = _mm512_permutex2var_epi8(numbers1, load(&kPlaces[1]), numbers2);
    const __m512i third = _mm512_permutex2var_epi8(numbers2, load(&kPlaces[2]), numbers3);
    for (size_t line = 0; line < kGroupBytes; line += kRegister) {
      _mm_prefetch(reinterpret_cast<const char*>(out) + kPrefetchData + line, _MM_HINT_T0);
    }
    store(out, first);
    store(out + kRegister, second);
    store(out + 2 * kRegister, third);
    crc.first = fold(crc.first, constants, first);
    crc.second = fold(crc.second, constants, second);
    crc.third = fold(crc.third, constants, third);
  }
  folded = crc;
}

tDecodedPayload decode(const uint8_t* text, size_t length, uint8_t* data) noexcept {
  // Space for an incomplete group, a round, the characters before the first complete register, and the
  // register by which a store may pass the end.
  uint8_t sextets[kGroup + kRound + 2 * kRegister];
  const uint8_t* const end = text + length;
  uint8_t* out = data;
  tFolded folded = beforeData();

  // After the head, loads of whole registers are aligned.
  const size_t unaligned = (kRegister - reinterpret_cast<uintptr_t>(text) % kRegister) % kRegister;
  const size_t head = unaligned < length ? unaligned : length;
  uint8_t* to = sextets;
  if (head > 0) {
    to = appendSextets(to, loadFirst(text, head));
    text += head;
  }
  while (text != end) {
    const size_t remaining = static_cast<size_t>(end - text);
    const uint8_t* const round = text + (remaining < kRound ? remaining : kRound);
    for (; round - text >= static_cast<ptrdiff_t>(kRegister); text += kRegister) {
      _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch, _MM_HINT_T0);
      to = appendSextets(to, load(text));
    }
    if (text != round) {
      to = appendSextets(to, loadFirst(text, static_cast<size_t>(round - text)));
      text = round;
    }
    const size_t groups = static_cast<size_t>(to - sextets) / kGroup;
    packGroups(sextets, groups, out, folded);
    out += groups * kGroupBytes;
    const uint8_t* const rest = sextets + groups * kGroup;
    for (size_t i = 0; i < kGroup; i += kRegister) {
      store(sextets + i, load(rest + i));
    }
    to -= groups * kGroup;
  }
  const size_t rest = packSextets(sextets, static_cast<size_t>(to - sextets), out);
  const uint32_t crcRegister = updateRegister(registerOf(folded), out, rest);
  return {static_cast<size_t>(out - data) + rest, ~crcRegister};
}

// ---- Search ----

// Zero where a character is NUL or the byte that fills `wanted`.
__m512i loadMarks(const uint8_t* text, __m512i wanted) noexcept {
  const __m512i characters = load(text);
  return _mm512_min_epu8(characters, _mm512_xor_si512(characters, wanted));
}

uint64_t zeroBytes(__m512i bytes) noexcept {
  return _cvtmask64_u64(_mm512_testn_epi8_mask(bytes, bytes));
}

const uint8_t* findByteOrNul(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept {
  constexpr ptrdiff_t kStep = kRegister;
  const __m512i wanted = _mm512_set1_epi8(static_cast<char>(byte));
  for (; end - text >= 2 * kStep; text += 2 * kStep) {
    _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch, _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch + kStep, _MM_HINT_T0);
    if (zeroBytes(_mm512_min_epu8(loadMarks(text, wanted), loadMarks(text + kStep, wanted))) != 0) {
      break;
    }
  }
  for (; end - text >= kStep; text += kStep) {
    const uint64_t found = zeroBytes(loadMarks(text, wanted));
    if (found != 0) {
      return text + __builtin_ctzll(found);
    }
  }
  return kPlainKernels.findByteOrNul(text, end, byte);
}

}  // namespace

const tKernels kAvx512Kernels{"AVX-512", &decode, &findByteOrNul};

}  // namespace nQUENRA1400::nFirmwareDecoding
