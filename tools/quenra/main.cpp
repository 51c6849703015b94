// The entry point on Windows: connects the command line to quenra.dll, the arguments, the standard
// streams and the console.
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Needs the types of windows.h.
#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tools/commandline/utf8text.h"
#include "tools/quenra/capture/driveronwindows.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/programs/programsonwindows.h"
#include "tools/quenra/quenradll.h"
#include "tools/quenra/update/updateonwindows.h"

namespace {

HANDLE standardOutput() noexcept {
  return GetStdHandle(STD_OUTPUT_HANDLE);
}

// https://no-color.org
bool stylesAreUnwanted() noexcept {
  const char* const noColour = std::getenv("NO_COLOR");
  return noColour != nullptr && *noColour != '\0';
}

// Writes to the standard output. Returns the Windows error on failure.
std::error_code writeOutput(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    constexpr size_t kMaxWrite = size_t{1} << 20;
    DWORD written = 0;
    if (!WriteFile(standardOutput(), bytes.data(),
                   static_cast<DWORD>(std::min(bytes.size(), kMaxWrite)), &written, nullptr)) {
      return {static_cast<int>(GetLastError()), std::system_category()};
    }
    bytes.remove_prefix(written);
  }
  return {};
}

// The console of the standard output, if there is one. During the object's life the console accepts
// UTF-8 and, if it can and the user permits it, escape codes for styles.
class tConsole {
 public:
  tConsole() noexcept
      // Fails unless the output is a console: for files, pipes and the null device.
      : present_(GetConsoleMode(standardOutput(), &modeBefore_) != 0) {
    if (present_) {
      SetConsoleOutputCP(CP_UTF8);
      takesStyles_ = !stylesAreUnwanted() && SetConsoleMode(standardOutput(), styledMode()) != 0;
    }
  }
  tConsole(const tConsole&) = delete;
  tConsole& operator=(const tConsole&) = delete;
  ~tConsole() {
    if (present_) {
      SetConsoleMode(standardOutput(), modeBefore_);
      SetConsoleOutputCP(codePageBefore_);
    }
  }

  [[nodiscard]] bool present() const noexcept { return present_; }
  [[nodiscard]] bool takesStyles() const noexcept { return takesStyles_; }

 private:
  [[nodiscard]] DWORD styledMode() const noexcept {
    return modeBefore_ | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING;
  }

  DWORD modeBefore_ = 0;
  UINT codePageBefore_ = GetConsoleOutputCP();
  bool present_;
  bool takesStyles_ = false;
};

// Ctrl-C, Ctrl-Break, a closed console, log-off and shutdown.
class tConsoleInterruption final : public nCommandLine::iInterruption {
 public:
  void intercept() noexcept override { SetConsoleCtrlHandler(handleEvent, TRUE); }
  [[nodiscard]] bool hasOccurred() noexcept override { return occurred_; }
  void rearm() noexcept override { occurred_ = false; }

 private:
  // Runs on a thread of the system. Windows ends the process when this returns from a close event.
  static BOOL WINAPI handleEvent(DWORD event) {
    occurred_ = true;
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
      Sleep(INFINITE);
    }
    return TRUE;
  }

  static inline std::atomic<bool> occurred_{false};
};

struct tLocalFree {
  void operator()(LPWSTR* memory) const noexcept { LocalFree(memory); }
};

// The words of the command line as UTF-8. The arguments of `main` are unsuitable: the C runtime
// converts them to the process code page, which lacks most characters, and may expand wildcards.
// Empty if memory is short.
std::vector<std::string> commandLineWords() {
  int count = 0;
  const std::unique_ptr<LPWSTR, tLocalFree> words(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> result;
  for (int i = 0; words && i < count; ++i) {
    const LPCWSTR word = words.get()[i];
    result.push_back(nCommandLine::utf8Word(std::u16string(word, word + wcslen(word))));
  }
  return result;
}

}  // namespace

int main() {
  // Lines end in LF on every system. The buffer of the standard output converts none either.
  _setmode(_fileno(stderr), _O_BINARY);
  const tConsole console;
  nCommandLine::tOutputBuffer buffer(&writeOutput);
  std::ostream out(&buffer);
  if (console.present()) {
    // Unbuffered on a console: output appears immediately and in order with the error stream.
    out << std::unitbuf;
  }
  nCommandLine::tStreams streams{out, std::cerr, console.present(), console.takesStyles(), &buffer};
  nCommandLine::tQuenraLibrary library;
  nCommandLine::tQuenraRouting routing;
  nCommandLine::tUpdateFacts updateFacts;
  nCommandLine::tInstallation installation;
  nCommandLine::tPrograms programs;
  tConsoleInterruption interruption;
  nCommandLine::tUpdateLock updateLock;
  nCommandLine::tMachineDriver driver;
  const std::vector<std::string> words = commandLineWords();
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) {
    pointers.push_back(word.c_str());
  }
  return nCommandLine::runCommandLine(
      static_cast<int>(pointers.size()), pointers.data(), streams,
      {library, routing, updateFacts, interruption, updateLock, installation, driver, programs});
}
