// The reference points of the measurements: other decoders, and memory alone.
#ifndef BENCH_PEERS_H
#define BENCH_PEERS_H

#ifdef _WIN32
#include <windows.h>
#else
#include <mutex>
#endif

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace nBench {

struct tDecoder {
  std::string name;
  // Decodes a text and returns the CRC of its bytes.
  std::function<uint32_t(const uint8_t* text, size_t length, uint8_t* data)> decode;
  bool skipsNoise = true;
};

// Straightforward code: decodes all Base64, then computes the CRC, a byte at a time with tables.
[[nodiscard]] tDecoder bytewisePair();

// Other libraries; empty in a build without them.
[[nodiscard]] std::vector<tDecoder> otherLibraries();

// The lock that a program of the system would use for a short access.
class tLock {
 public:
#ifdef _WIN32
  tLock() {
    InitializeCriticalSection(&section_);
  }
  ~tLock() {
    DeleteCriticalSection(&section_);
  }
  void enter() {
    EnterCriticalSection(&section_);
  }
  void leave() {
    LeaveCriticalSection(&section_);
  }
#else
  tLock() = default;
  void enter() {
    mutex_.lock();
  }
  void leave() {
    mutex_.unlock();
  }
#endif
  tLock(const tLock&) = delete;
  tLock& operator=(const tLock&) = delete;

 private:
#ifdef _WIN32
  CRITICAL_SECTION section_;
#else
  std::mutex mutex_;
#endif
};

class tLocked {
 public:
  explicit tLocked(tLock& lock) : lock_(lock) { lock_.enter(); }
  tLocked(const tLocked&) = delete;
  tLocked& operator=(const tLocked&) = delete;
  ~tLocked() { lock_.leave(); }

 private:
  tLock& lock_;
};

// Copies bytes into newly allocated memory and frees it.
void copyIntoFreshMemory(const uint8_t* data, size_t count);

// Reads all bytes and adds them word by word.
[[nodiscard]] uint64_t readAll(const uint8_t* data, size_t count);

}  // namespace nBench

#endif
