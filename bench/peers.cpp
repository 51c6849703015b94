// In a file separate from the measurements: a compiler that sees caller and function together removes
// memory that is never read.
#include "bench/peers.h"

#ifndef _WIN32
#include <openssl/evp.h>

#include <boost/crc.hpp>
#endif

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace nBench {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::array<int8_t, 256> makeSextets() {
  std::array<int8_t, 256> sextets{};
  sextets.fill(-1);
  for (size_t i = 0; i < kAlphabet.size(); ++i) {
    sextets[static_cast<uint8_t>(kAlphabet[i])] = static_cast<int8_t>(i);
  }
  return sextets;
}

std::array<uint32_t, 256> makeCrcTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t byte = 0; byte < table.size(); ++byte) {
    uint32_t value = byte << 24;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value << 1) ^ ((value >> 31) * 0x1EDC6F41);
    }
    table[byte] = value;
  }
  return table;
}

size_t decode(const std::array<int8_t, 256>& sextets, const uint8_t* text, size_t length,
              uint8_t* data) {
  uint32_t bits = 0;
  int count = 0;
  uint8_t* out = data;
  for (size_t i = 0; i < length; ++i) {
    const int8_t sextet = sextets[text[i]];
    if (sextet < 0) {
      continue;
    }
    bits = bits << 6 | static_cast<uint32_t>(sextet);
    count += 6;
    if (count >= 8) {
      count -= 8;
      *out++ = static_cast<uint8_t>(bits >> count);
    }
  }
  return static_cast<size_t>(out - data);
}

uint32_t sum(const std::array<uint32_t, 256>& table, const uint8_t* data, size_t count) {
  uint32_t value = 0xFFFFFFFF;
  for (size_t i = 0; i < count; ++i) {
    value = (value << 8) ^ table[(value >> 24) ^ data[i]];
  }
  return ~value;
}

}  // namespace

tDecoder bytewisePair() {
  return {"byte-wise", [sextets = makeSextets(), table = makeCrcTable()](
                           const uint8_t* text, size_t length, uint8_t* data) {
            return sum(table, data, decode(sextets, text, length, data));
          }};
}

// ---- Other libraries ----

#ifdef _WIN32

std::vector<tDecoder> otherLibraries() {
  return {};
}

#else

namespace {

struct tFreeContext {
  void operator()(EVP_ENCODE_CTX* context) const { EVP_ENCODE_CTX_free(context); }
};

size_t decodeByOpenSsl(const uint8_t* text, size_t length, uint8_t* data) {
  const std::unique_ptr<EVP_ENCODE_CTX, tFreeContext> context(EVP_ENCODE_CTX_new());
  EVP_DecodeInit(context.get());
  int count = 0;
  int rest = 0;
  if (EVP_DecodeUpdate(context.get(), data, &count, text, static_cast<int>(length)) < 0 ||
      EVP_DecodeFinal(context.get(), data + count, &rest) < 0) {
    std::abort();
  }
  return static_cast<size_t>(count) + static_cast<size_t>(rest);
}

uint32_t decodeAndSum(const uint8_t* text, size_t length, uint8_t* data) {
  boost::crc_optimal<32, 0x1EDC6F41, 0xFFFFFFFF, 0xFFFFFFFF, false, false> crc;
  crc.process_bytes(data, decodeByOpenSsl(text, length, data));
  return crc.checksum();
}

}  // namespace

std::vector<tDecoder> otherLibraries() {
  return {{"OpenSSL + Boost.CRC", &decodeAndSum, false}};
}

#endif

// ---- Memory alone ----

void copyIntoFreshMemory(const uint8_t* data, size_t count) {
  auto* const memory = static_cast<volatile uint8_t*>(std::malloc(count));
  if (memory == nullptr) {
    std::abort();
  }
  std::memcpy(const_cast<uint8_t*>(memory), data, count);
  // The volatile read prevents the compiler from removing the copy.
  (void)memory[count - 1];
  std::free(const_cast<uint8_t*>(memory));
}

uint64_t readAll(const uint8_t* data, size_t count) {
  constexpr size_t kWords = 8;
  uint64_t sums[kWords] = {};
  for (; count >= sizeof sums; count -= sizeof sums, data += sizeof sums) {
    uint64_t words[kWords];
    std::memcpy(words, data, sizeof words);
    for (size_t i = 0; i < kWords; ++i) {
      sums[i] += words[i];
    }
  }
  uint64_t all = 0;
  for (const uint64_t one : sums) {
    all += one;
  }
  return all;
}

}  // namespace nBench
