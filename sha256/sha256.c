#include "sha256/sha256.h"

/* Fractional parts of the square roots of the first 8 primes and the cube roots of the first 64. */
static const uint32_t kFirstState[8] = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                        0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

static const uint32_t kRoundConstants[64] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

static uint32_t rotate(uint32_t word, unsigned bits) {
  return word >> bits | word << (32 - bits);
}

static uint32_t bigEndian(const uint8_t* bytes) {
  return (uint32_t)bytes[0] << 24 | (uint32_t)bytes[1] << 16 | (uint32_t)bytes[2] << 8 | bytes[3];
}

static void expandBlock(uint32_t words[64], const uint8_t* block) {
  for (unsigned i = 0; i < 16; ++i) {
    words[i] = bigEndian(block + 4u * i);
  }
  for (unsigned i = 16; i < 64; ++i) {
    const uint32_t old = words[i - 15];
    const uint32_t recent = words[i - 2];
    words[i] = words[i - 16] + (rotate(old, 7) ^ rotate(old, 18) ^ old >> 3) + words[i - 7] +
               (rotate(recent, 17) ^ rotate(recent, 19) ^ recent >> 10);
  }
}

static void addBlock(uint32_t state[8], const uint8_t* block) {
  uint32_t words[64];
  uint32_t v[8];
  expandBlock(words, block);
  for (unsigned i = 0; i < 8; ++i) {
    v[i] = state[i];
  }
  for (unsigned i = 0; i < 64; ++i) {
    const uint32_t chosen = (v[4] & v[5]) ^ (~v[4] & v[6]);
    const uint32_t majority = (v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]);
    const uint32_t first = v[7] + (rotate(v[4], 6) ^ rotate(v[4], 11) ^ rotate(v[4], 25)) + chosen +
                           kRoundConstants[i] + words[i];
    const uint32_t second = (rotate(v[0], 2) ^ rotate(v[0], 13) ^ rotate(v[0], 22)) + majority;
    for (unsigned j = 7; j > 0; --j) {
      v[j] = v[j - 1];
    }
    v[4] += first;
    v[0] = first + second;
  }
  for (unsigned i = 0; i < 8; ++i) {
    state[i] += v[i];
  }
}

void sha256Start(tSha256* hash) {
  hash->size = 0;
  for (unsigned i = 0; i < 8; ++i) {
    hash->state[i] = kFirstState[i];
  }
}

void sha256Add(tSha256* hash, const void* bytes, uint32_t size) {
  const uint8_t* from = bytes;
  while (size != 0) {
    const uint32_t used = (uint32_t)(hash->size % SHA256_BLOCK_SIZE);
    const uint32_t free = SHA256_BLOCK_SIZE - used;
    const uint32_t taken = size < free ? size : free;
    for (uint32_t i = 0; i < taken; ++i) {
      hash->block[used + i] = from[i];
    }
    hash->size += taken;
    from += taken;
    size -= taken;
    if (used + taken == SHA256_BLOCK_SIZE) {
      addBlock(hash->state, hash->block);
    }
  }
}

void sha256Finish(tSha256* hash, uint8_t result[SHA256_SIZE]) {
  static const uint8_t kPadding[SHA256_BLOCK_SIZE] = {0x80};
  const uint64_t bits = hash->size * 8;
  const uint32_t used = (uint32_t)(hash->size % SHA256_BLOCK_SIZE);
  const uint32_t endOfPadding = SHA256_BLOCK_SIZE - 8;
  sha256Add(hash, kPadding,
            used < endOfPadding ? endOfPadding - used : endOfPadding + SHA256_BLOCK_SIZE - used);
  uint8_t length[8];
  for (unsigned i = 0; i < 8; ++i) {
    length[i] = (uint8_t)(bits >> (56 - 8 * i));
  }
  sha256Add(hash, length, sizeof(length));
  for (unsigned i = 0; i < SHA256_SIZE; ++i) {
    result[i] = (uint8_t)(hash->state[i / 4] >> (24 - 8 * (i % 4)));
  }
}
