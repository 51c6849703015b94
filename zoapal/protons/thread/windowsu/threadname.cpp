#include "zoapal/protons/thread/windowsu/threadname.h"

#include <cstring>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr DWORD kNamingException = 0x406D1388;
constexpr char kName[] = "quenra";

// The record that debuggers know.
struct tThreadName {
  ULONG_PTR type;
  const char* name;
  DWORD threadId;
  DWORD flags;
};
constexpr ULONG_PTR kType = 0x1000;
constexpr DWORD kWords = sizeof(tThreadName) / sizeof(ULONG_PTR);

// Without a debugger nobody takes the exception, and it would end the process. Those that other code
// raises are not ours to take: they have another name, at another address at least.
LONG CALLBACK continueBehindOurs(EXCEPTION_POINTERS* exception) noexcept {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  const bool isOurs = record.ExceptionCode == kNamingException &&
                      record.NumberParameters == kWords &&
                      record.ExceptionInformation[1] == reinterpret_cast<ULONG_PTR>(&kName);
  return isOurs ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void nameThreadForDebuggers(DWORD threadId) noexcept {
  void* const handler = AddVectoredExceptionHandler(1, continueBehindOurs);
  if (handler == nullptr) {
    return;
  }
  const tThreadName record{kType, kName, threadId, 0};
  ULONG_PTR words[kWords];
  std::memcpy(words, &record, sizeof words);
  RaiseException(kNamingException, 0, kWords, words);
  RemoveVectoredExceptionHandler(handler);
}

}  // namespace nQUENRA1400::nZOAPAL000
