// Windows builds have no other libraries.
#include "bench/peers.h"

#ifdef _WIN32

namespace nBench {

std::vector<tDecoder> otherLibraries() {
  return {};
}

}  // namespace nBench

#else

#include <openssl/evp.h>

#include <boost/crc.hpp>
#include <cstdlib>
#include <memory>

namespace nBench {
namespace {

struct tFreeContext {
  void operator()(EVP_ENCODE_CTX* context) const { EVP_ENCODE_CTX_free(context); }
};

size_t decode(const uint8_t* text, size_t length, uint8_t* data) {
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
  crc.process_bytes(data, decode(text, length, data));
  return crc.checksum();
}

}  // namespace

std::vector<tDecoder> otherLibraries() {
  return {{"OpenSSL + Boost.CRC", &decodeAndSum, false}};
}

}  // namespace nBench

#endif
