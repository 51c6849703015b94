// The program on Windows: the library itself, the words it is given, the standard streams, and the
// console behind them.
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Needs the types of windows.h.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/quenra/commandline.h"
#include "tools/quenra/interruption/tconsoleinterruption.h"
#include "tools/quenra/reading/tquenralibrary.h"
#include "tools/quenra/routing/tquenrarouting.h"
#include "tools/quenra/update/tupdatefacts.h"
#include "tools/quenra/utf16word.h"

namespace {

HANDLE standardOutput() noexcept {
  return GetStdHandle(STD_OUTPUT_HANDLE);
}

// https://no-color.org
bool stylesAreUnwanted() noexcept {
  const char* const noColour = std::getenv("NO_COLOR");
  return noColour != nullptr && *noColour != '\0';
}

// The console behind the standard output, if there is one. While the object lives, the console takes
// UTF-8 and, where it can and the user does not mind, escape codes for styles.
class tConsole {
 public:
  tConsole() noexcept
      // Fails for everything but a console: files, pipes, the null device.
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

struct tLocalFree {
  void operator()(LPWSTR* memory) const noexcept { LocalFree(memory); }
};

// What `main` is given has gone through the process code page, which few characters survive, and
// may have had its wildcards replaced by the names of files. Empty where memory is short.
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
  // Lines end the same way wherever the program runs.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  const tConsole console;
  nCommandLine::tStreams streams{std::cout, std::cerr, console.present(), console.takesStyles()};
  nCommandLine::tQuenraLibrary library;
  nCommandLine::tQuenraRouting routing;
  nCommandLine::tUpdateFacts updateFacts;
  nCommandLine::tConsoleInterruption interruption;
  const std::vector<std::string> words = commandLineWords();
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) {
    pointers.push_back(word.c_str());
  }
  return nCommandLine::runCommandLine(static_cast<int>(pointers.size()), pointers.data(), streams,
                                      {library, routing, updateFacts, interruption});
}
