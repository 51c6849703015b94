/* An incremental SHA-256 hash without operating system or C library. */
#ifndef SHA256_SHA256_H
#define SHA256_SHA256_H

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
  uint8_t block[SHA256_BLOCK_SIZE]; /* the last bytes, less than a block */
} tSha256;

void sha256Start(tSha256* hash);
void sha256Add(tSha256* hash, const void* bytes, uint32_t size);
/* Ends the computation. Call sha256Start before the next use. */
void sha256Finish(tSha256* hash, uint8_t result[SHA256_SIZE]);

#ifdef __cplusplus
}
#endif

#endif
