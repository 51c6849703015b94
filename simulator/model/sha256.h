/* The SHA-256 hash of bytes that arrive in pieces, without operating system or C library. */
#ifndef SIMULATOR_MODEL_SHA256_H
#define SIMULATOR_MODEL_SHA256_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
  SHA256_SIZE = 32,
  SHA256_BLOCK_SIZE = 64
};

typedef struct tSha256 {
  uint32_t state[8];
  uint64_t size;                    /* bytes so far */
  uint8_t block[SHA256_BLOCK_SIZE]; /* those that do not make a whole block yet */
} tSha256;

void sha256Start(tSha256* hash);
void sha256Add(tSha256* hash, const void* bytes, uint32_t size);
/* Ends the computation; the hash has to be started again before its next use. */
void sha256Finish(tSha256* hash, uint8_t result[SHA256_SIZE]);

#ifdef __cplusplus
}
#endif

#endif
