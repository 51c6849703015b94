// For processors with AVX2 and carry-less multiplication, of one lane or, in a second compilation of this
// file with VPCLMULQDQ, of two lanes at a time. Everything here has internal linkage, and nothing is
// included that defines functions: see kernels.h.
#include <immintrin.h>
#include <string.h>

#include "source/user/firmware/decoding/kernels.h"
#include "source/user/firmware/decoding/plainsteps.h"

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

constexpr size_t kBlock = 32;       // characters translated at a time
constexpr size_t kGroup = 128;      // sextets packed at a time...
constexpr size_t kGroupBytes = 96;  // ...to so many bytes, three registers
constexpr size_t kRound = 2048;     // characters translated before their sextets are packed
constexpr size_t kPrefetch = 4096;  // bytes of text ahead
// Bytes of data ahead. Cache lines must be fetched before they are written, and the processor does not
// predict these.
constexpr size_t kPrefetchData = 2048;

// ---- Characters to sextets ----

// A character is classified by its two halves. The upper half is a column of the ASCII table; columns with
// the same valid lower halves form a class, a bit. A lower half has the bits of the classes in which it
// is invalid, so a character is valid when its two halves have no bit in common.
struct tTranslation {
  uint8_t classOfUpper[16];
  uint8_t invalidForLower[16];
  uint8_t offsetOfUpper[16];  // from the character to its sextet; '/' has that of column 1
};

consteval tTranslation makeTranslation() {
  tTranslation table{};
  const auto isValid = [](unsigned character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '+' || character == '/';
  };
  constexpr uint8_t kClassOfColumn[8] = {0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08};
  for (unsigned upper = 0; upper < 16; ++upper) {
    table.classOfUpper[upper] = upper < 8 ? kClassOfColumn[upper] : uint8_t{0x10};
    for (unsigned lower = 0; lower < 16; ++lower) {
      if (!isValid(upper * 16 + lower)) {
        table.invalidForLower[lower] |= table.classOfUpper[upper];
      }
    }
  }
  constexpr int kOffsets[8] = {0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a'};
  for (unsigned upper = 0; upper < 8; ++upper) {
    table.offsetOfUpper[upper] = static_cast<uint8_t>(kOffsets[upper]);
  }
  return table;
}

// compaction[mask] gathers those of eight bytes whose bits are set.
struct tCompaction {
  uint8_t places[256][8];
};

consteval tCompaction makeCompaction() {
  tCompaction table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned count = 0;
    for (uint8_t place = 0; place < 8; ++place) {
      if ((mask >> place & 1) != 0) {
        table.places[mask][count++] = place;
      }
    }
  }
  return table;
}

constexpr tTranslation kTranslation = makeTranslation();
constexpr tCompaction kCompaction = makeCompaction();

__m128i load128(const void* from) noexcept {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

void store128(uint8_t* to, __m128i value) noexcept {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

__m256i load256(const void* from) noexcept {
  return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

__m256i inBothLanes(const uint8_t* table) noexcept {
  return _mm256_broadcastsi128_si256(load128(table));
}

// Appends those of eight sextets whose bits are set. Always writes eight bytes.
uint8_t* appendValid(uint8_t* to, __m128i sextets, unsigned mask) noexcept {
  const __m128i places =
      _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kCompaction.places[mask]));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(sextets, places));
  return to + _mm_popcnt_u32(mask);
}

// Appends the sextets of 32 characters of which some are noise.
uint8_t* appendValid(uint8_t* to, __m256i sextets, uint32_t mask) noexcept {
  const __m128i low = _mm256_castsi256_si128(sextets);
  const __m128i high = _mm256_extracti128_si256(sextets, 1);
  to = appendValid(to, low, mask & 0xFF);
  to = appendValid(to, _mm_srli_si128(low, 8), mask >> 8 & 0xFF);
  to = appendValid(to, high, mask >> 16 & 0xFF);
  return appendValid(to, _mm_srli_si128(high, 8), mask >> 24);
}

// Appends the sextets of whole blocks and returns the end of what is appended.
uint8_t* appendSextets(uint8_t* to, const uint8_t* text, const uint8_t* end) noexcept {
  const __m256i classOfUpper = inBothLanes(kTranslation.classOfUpper);
  const __m256i invalidForLower = inBothLanes(kTranslation.invalidForLower);
  const __m256i offsetOfUpper = inBothLanes(kTranslation.offsetOfUpper);
  const __m256i half = _mm256_set1_epi8(0x0F);
  const __m256i slash = _mm256_set1_epi8('/');
  for (; text != end; text += kBlock) {
    _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch, _MM_HINT_T0);
    const __m256i characters = load256(text);
    const __m256i upper = _mm256_and_si256(_mm256_srli_epi16(characters, 4), half);
    const __m256i lower = _mm256_and_si256(characters, half);
    const __m256i offsets = _mm256_shuffle_epi8(
        offsetOfUpper, _mm256_add_epi8(upper, _mm256_cmpeq_epi8(characters, slash)));
    const __m256i sextets = _mm256_add_epi8(characters, offsets);
    const __m256i faults = _mm256_and_si256(_mm256_shuffle_epi8(classOfUpper, upper),
                                            _mm256_shuffle_epi8(invalidForLower, lower));
    if (_mm256_testz_si256(faults, faults) != 0) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), sextets);
      to += kBlock;
    } else {
      const __m256i isValid = _mm256_cmpeq_epi8(faults, _mm256_setzero_si256());
      to = appendValid(to, sextets, static_cast<uint32_t>(_mm256_movemask_epi8(isValid)));
    }
  }
  return to;
}

// ---- The CRC ----

// The bytes of a group as six lanes of 16, as they leave the registers: lanes 0 and 3, 1 and 4, 2 and 5.
struct tGroupBytes {
  __m256i lanes03, lanes14, lanes25;
};

struct tFoldingConstants {
  uint64_t low, high;
};
constexpr tFoldingConstants kOverAGroup = {powerOfX(8 * kGroupBytes),
                                           powerOfX(8 * kGroupBytes + 64)};

__m128i lowerLane(__m256i lanes) noexcept {
  return _mm256_castsi256_si128(lanes);
}
__m128i upperLane(__m256i lanes) noexcept {
  return _mm256_extracti128_si256(lanes, 1);
}

// Reverses the bytes of each lane.
constexpr uint8_t kReversed[16] = {15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};

__m128i bytesReversed(__m128i bytes) noexcept {
  return _mm_shuffle_epi8(bytes, load128(kReversed));
}

// Six lanes as big-endian numbers. Before the rest of the data, they give the same CRC as all the bytes that
// they replace. foldGroup moves each lane over the bytes of a group, to the place of the new bytes.
#ifdef __VPCLMULQDQ__
// GCOVR_EXCL_START: runs only on processors that have the instructions

using tFolded = tGroupBytes;

__m256i fold(__m256i lanes, __m256i constants, __m256i bytes) noexcept {
  const __m256i low = _mm256_clmulepi64_epi128(lanes, constants, 0x00);
  const __m256i high = _mm256_clmulepi64_epi128(lanes, constants, 0x11);
  const __m256i reversed = _mm256_shuffle_epi8(bytes, inBothLanes(kReversed));
  return _mm256_xor_si256(_mm256_xor_si256(low, high), reversed);
}

void foldGroup(tFolded& folded, const tGroupBytes& bytes) noexcept {
  const __m256i constants = _mm256_broadcastsi128_si256(load128(&kOverAGroup));
  folded.lanes03 = fold(folded.lanes03, constants, bytes.lanes03);
  folded.lanes14 = fold(folded.lanes14, constants, bytes.lanes14);
  folded.lanes25 = fold(folded.lanes25, constants, bytes.lanes25);
}

tFolded beforeData() noexcept {
  const __m256i zero = _mm256_setzero_si256();
  return {zero, zero, _mm256_set_epi64x(0, bytesBeforeData(), 0, 0)};
}

uint32_t registerOf(const tFolded& folded) noexcept {
  uint8_t bytes[kGroupBytes];
  store128(bytes, bytesReversed(lowerLane(folded.lanes03)));
  store128(bytes + 16, bytesReversed(lowerLane(folded.lanes14)));
  store128(bytes + 32, bytesReversed(lowerLane(folded.lanes25)));
  store128(bytes + 48, bytesReversed(upperLane(folded.lanes03)));
  store128(bytes + 64, bytesReversed(upperLane(folded.lanes14)));
  store128(bytes + 80, bytesReversed(upperLane(folded.lanes25)));
  return updateRegister(0, bytes, sizeof bytes);
}
// GCOVR_EXCL_STOP

#else

struct tFolded {
  __m128i lane0, lane1, lane2, lane3, lane4, lane5;
};

__m128i fold(__m128i lane, __m128i constants, __m128i bytes) noexcept {
  const __m128i low = _mm_clmulepi64_si128(lane, constants, 0x00);
  const __m128i high = _mm_clmulepi64_si128(lane, constants, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), bytesReversed(bytes));
}

void foldGroup(tFolded& folded, const tGroupBytes& bytes) noexcept {
  const __m128i constants = load128(&kOverAGroup);
  folded.lane0 = fold(folded.lane0, constants, lowerLane(bytes.lanes03));
  folded.lane1 = fold(folded.lane1, constants, lowerLane(bytes.lanes14));
  folded.lane2 = fold(folded.lane2, constants, lowerLane(bytes.lanes25));
  folded.lane3 = fold(folded.lane3, constants, upperLane(bytes.lanes03));
  folded.lane4 = fold(folded.lane4, constants, upperLane(bytes.lanes14));
  folded.lane5 = fold(folded.lane5, constants, upperLane(bytes.lanes25));
}

tFolded beforeData() noexcept {
  const __m128i zero = _mm_setzero_si128();
  return {zero, zero, zero, zero, zero, _mm_set_epi64x(0, bytesBeforeData())};
}

uint32_t registerOf(const tFolded& folded) noexcept {
  uint8_t bytes[kGroupBytes];
  store128(bytes, bytesReversed(folded.lane0));
  store128(bytes + 16, bytesReversed(folded.lane1));
  store128(bytes + 32, bytesReversed(folded.lane2));
  store128(bytes + 48, bytesReversed(folded.lane3));
  store128(bytes + 64, bytesReversed(folded.lane4));
  store128(bytes + 80, bytesReversed(folded.lane5));
  return updateRegister(0, bytes, sizeof bytes);
}

#endif

// ---- Sextets to bytes ----

// Sixteen sextets from each half of a group, as four numbers of 24 bits each.
__m256i joinSextets(const uint8_t* sextets) noexcept {
  const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(load128(sextets)),
                                               load128(sextets + kGroup / 2), 1);
  const __m256i pairs = _mm256_maddubs_epi16(both, _mm256_set1_epi16(0x0140));
  return _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
}

// The places of the bytes of the numbers. Four numbers make twelve bytes, so a lane of sixteen has the end of
// one four and the beginning of the next.
constexpr uint8_t kNone = 0x80;
struct tPlaces {
  uint8_t first[16], second[16];
};
constexpr uint8_t kPlaces[12] = {2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12};

consteval tPlaces makePlaces(unsigned skipped) {
  tPlaces places{};
  for (unsigned i = 0; i < 16; ++i) {
    const unsigned place = i + skipped;
    places.first[i] = place < 12 ? kPlaces[place] : kNone;
    places.second[i] = place < 12 ? kNone : kPlaces[place - 12];
  }
  return places;
}
constexpr tPlaces kLanes[3] = {makePlaces(0), makePlaces(4), makePlaces(8)};

__m256i gather(__m256i first, __m256i second, const tPlaces& places) noexcept {
  return _mm256_or_si256(_mm256_shuffle_epi8(first, inBothLanes(places.first)),
                         _mm256_shuffle_epi8(second, inBothLanes(places.second)));
}

// Packs whole groups, and folds their bytes while they are in registers.
void packGroups(const uint8_t* sextets, size_t groups, uint8_t* out, tFolded& folded) noexcept {
  tFolded crc = folded;
  for (; groups > 0; --groups, sextets += kGroup, out += kGroupBytes) {
    const __m256i four0 = joinSextets(sextets);
    const __m256i four1 = joinSextets(sextets + 16);
    const __m256i four2 = joinSextets(sextets + 32);
    const __m256i four3 = joinSextets(sextets + 48);
    // The lower lanes are the first three of the group, the upper ones the last three.
    const __m256i lanes03 = gather(four0, four1, kLanes[0]);
    const __m256i lanes14 = gather(four1, four2, kLanes[1]);
    const __m256i lanes25 = gather(four2, four3, kLanes[2]);
    _mm_prefetch(reinterpret_cast<const char*>(out) + kPrefetchData, _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(out) + kPrefetchData + 64, _MM_HINT_T0);
    store128(out, lowerLane(lanes03));
    store128(out + 16, lowerLane(lanes14));
    store128(out + 32, lowerLane(lanes25));
    store128(out + 48, upperLane(lanes03));
    store128(out + 64, upperLane(lanes14));
    store128(out + 80, upperLane(lanes25));
    foldGroup(crc, {lanes03, lanes14, lanes25});
  }
  folded = crc;
}

tDecodedPayload decode(const uint8_t* text, size_t length, uint8_t* data) noexcept {
  uint8_t sextets[kGroup + kRound + kBlock];
  uint8_t* out = data;
  tFolded folded = beforeData();
  // After the head, loads of whole registers are aligned.
  const size_t unaligned = (kBlock - reinterpret_cast<uintptr_t>(text) % kBlock) % kBlock;
  const size_t head = unaligned < length ? unaligned : length;
  size_t count = extractSextets(text, head, sextets);
  text += head;
  length -= head;
  while (length >= kBlock) {
    const size_t taken = (length < kRound ? length : kRound) / kBlock * kBlock;
    count = static_cast<size_t>(appendSextets(sextets + count, text, text + taken) - sextets);
    text += taken;
    length -= taken;
    const size_t groups = count / kGroup;
    if (groups > 0) {
      packGroups(sextets, groups, out, folded);
      out += groups * kGroupBytes;
      memcpy(sextets, sextets + groups * kGroup, kGroup);
      count %= kGroup;
    }
  }
  count += extractSextets(text, length, sextets + count);
  const size_t rest = packSextets(sextets, count, out);
  const uint32_t crcRegister = updateRegister(registerOf(folded), out, rest);
  return {static_cast<size_t>(out - data) + rest, ~crcRegister};
}

// ---- Search ----

// Zero where a character is NUL or the byte that fills `wanted`.
__m256i loadMarks(const uint8_t* text, __m256i wanted) noexcept {
  const __m256i characters = load256(text);
  return _mm256_min_epu8(characters, _mm256_xor_si256(characters, wanted));
}

uint32_t zeroBytes(__m256i bytes) noexcept {
  return static_cast<uint32_t>(
      _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256())));
}

const uint8_t* findByteOrNul(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept {
  constexpr ptrdiff_t kVector = 32;
  const __m256i wanted = _mm256_set1_epi8(static_cast<char>(byte));
  for (; end - text >= 4 * kVector; text += 4 * kVector) {
    _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch, _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(text) + kPrefetch + 64, _MM_HINT_T0);
    const __m256i marks01 =
        _mm256_min_epu8(loadMarks(text, wanted), loadMarks(text + kVector, wanted));
    const __m256i marks23 = _mm256_min_epu8(loadMarks(text + 2 * kVector, wanted),
                                            loadMarks(text + 3 * kVector, wanted));
    if (zeroBytes(_mm256_min_epu8(marks01, marks23)) != 0) {
      break;
    }
  }
  for (; end - text >= kVector; text += kVector) {
    const uint32_t found = zeroBytes(loadMarks(text, wanted));
    if (found != 0) {
      return text + __builtin_ctz(found);
    }
  }
  return kPlainKernels.findByteOrNul(text, end, byte);
}

}  // namespace

#ifdef __VPCLMULQDQ__
const tKernels kAvx2WideKernels{"AVX2-VPCLMUL", &decode, &findByteOrNul};
#else
const tKernels kAvx2Kernels{"AVX2", &decode, &findByteOrNul};
#endif

}  // namespace nQUENRA1400::nFirmwareDecoding
