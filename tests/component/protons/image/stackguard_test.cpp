// The stack guard: the loader replaces its value, and an overwritten guard ends the process. The
// unwinding tables: an exception passes the functions of the C++ library that the linker added.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <stdexcept>
#include <streambuf>

// The guard of this image.
extern "C" uintptr_t __stack_chk_guard;  // NOLINT(bugprone-reserved-identifier)

namespace nTests {
namespace {

constexpr uintptr_t kInTheFile = 0x00002B992DDFA232;
constexpr uint32_t kStackBufferOverrun = 0xC0000409;

// The load configuration of a loaded library, or null.
const IMAGE_LOAD_CONFIG_DIRECTORY64* loadConfigurationOf(HMODULE library) {
  const auto* const image = reinterpret_cast<const std::byte*>(library);
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& entry =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG];
  return entry.VirtualAddress == 0
             ? nullptr
             : reinterpret_cast<const IMAGE_LOAD_CONFIG_DIRECTORY64*>(image + entry.VirtualAddress);
}

// Volatile, so that the compiler does not detect the overflow.
volatile size_t lengthOfAMistake = 64;

__attribute__((noinline)) void writeBehindAnArray() {
  char text[16];
  volatile char* const start = text;
  for (size_t place = 0; place < lengthOfAMistake; ++place) {
    start[place] = 'x';
  }
}

TEST(StackGuard, OfTheLoadedLibrary_IsRandom) {
  const HMODULE library = LoadLibraryA("quenra.dll");
  ASSERT_NE(nullptr, library);
  const auto* const configuration = loadConfigurationOf(library);
  ASSERT_NE(nullptr, configuration);
  uintptr_t guard = 0;
  std::memcpy(&guard, reinterpret_cast<const void*>(configuration->SecurityCookie), sizeof guard);
  EXPECT_NE(kInTheFile, guard);
  EXPECT_NE(0U, guard);
  FreeLibrary(library);
}

TEST(StackGuard, OfAHardenedProgram_IsRandom) {
  EXPECT_NE(kInTheFile, __stack_chk_guard);
  EXPECT_NE(0U, __stack_chk_guard);
}

TEST(StackGuard, WrittenOver_EndsTheProcessAtOnce) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(writeBehindAnArray(), testing::ExitedWithCode(static_cast<int>(kStackBufferOverrun)),
              "");
}

struct tFailingBuffer : std::streambuf {
  int_type underflow() override { throw std::runtime_error("no data"); }
};

TEST(UnwindingTables, OfTheLinkedLibrary_LetAnExceptionPass) {
  tFailingBuffer buffer;
  std::istream stream(&buffer);
  stream.exceptions(std::ios::badbit);
  int number = 0;
  EXPECT_THROW(stream >> number, std::runtime_error);
}

}  // namespace
}  // namespace nTests
