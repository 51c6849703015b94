// The program on Windows: the library itself, the standard streams, and the console behind them.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "tools/quenra/commandline.h"
#include "tools/quenra/reading/tquenralibrary.h"

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

}  // namespace

int main(int argc, char** argv) {
  // Lines end the same way wherever the program runs.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  const tConsole console;
  nCommandLine::tStreams streams{std::cout, std::cerr, console.present(), console.takesStyles()};
  nCommandLine::tQuenraLibrary library;
  return nCommandLine::runCommandLine(argc, argv, streams, library);
}
