#include "tools/quenra/programs/programsonwindows.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nCommandLine {
namespace {

using nQUENRA1400::nZOAPAL000::tObjectPolicy;
using tHandle = nQUENRA1400::nZOAPAL000::tUniqueHandle<tObjectPolicy>;

std::error_code lastError() noexcept {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

// Empty if the text is not UTF-8.
std::wstring wide(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int length =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  std::wstring result(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, result.data(), length);
  return result;
}

// ---- The job ----

bool setEndsWithItsHandle(HANDLE job, bool endsWithItsHandle) noexcept {
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags =
      endsWithItsHandle ? JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE : 0;
  return SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) !=
         FALSE;
}

tHandle createJob() noexcept {
  tHandle job(CreateJobObjectW(nullptr, nullptr));
  if (job && !setEndsWithItsHandle(job.get(), true)) {
    job.reset();
  }
  return job;
}

// ---- The streams ----

// Inheritable copies of the standard streams; a stream that the process does not have is null.
class tInheritedStreams {
 public:
  explicit tInheritedStreams(tProgramOutput output) noexcept {
    const DWORD outputStream =
        output == tProgramOutput::toErrorStream ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
    const std::array<DWORD, 3> streams{STD_INPUT_HANDLE, outputStream, STD_ERROR_HANDLE};
    for (size_t i = 0; i < streams.size(); ++i) {
      copies_[i] = inheritableCopyOf(GetStdHandle(streams[i]));
      if (copies_[i]) {
        list_[count_++] = copies_[i].get();
      }
    }
  }

  [[nodiscard]] HANDLE input() const noexcept { return copies_[0].get(); }
  [[nodiscard]] HANDLE output() const noexcept { return copies_[1].get(); }
  [[nodiscard]] HANDLE error() const noexcept { return copies_[2].get(); }
  // The existing streams.
  [[nodiscard]] HANDLE* list() noexcept { return list_.data(); }
  [[nodiscard]] size_t count() const noexcept { return count_; }

 private:
  static tHandle inheritableCopyOf(HANDLE stream) noexcept {
    HANDLE copy = nullptr;
    const bool exists = stream != nullptr && stream != INVALID_HANDLE_VALUE;
    if (!exists || !DuplicateHandle(GetCurrentProcess(), stream, GetCurrentProcess(), &copy, 0,
                                    TRUE, DUPLICATE_SAME_ACCESS)) {
      return {};
    }
    return tHandle(copy);
  }

  std::array<tHandle, 3> copies_;
  std::array<HANDLE, 3> list_{};
  size_t count_ = 0;
};

// Limits the handles that a new process inherits to those of a list.
class tInheritanceList {
 public:
  // `streams` must outlive the list.
  explicit tInheritanceList(tInheritedStreams& streams) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    memory_.resize(size);
    auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    if (InitializeProcThreadAttributeList(list, 1, 0, &size)) {
      list_ = list;
      isValid_ =
          streams.count() == 0 ||
          UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, streams.list(),
                                    streams.count() * sizeof(HANDLE), nullptr, nullptr) != FALSE;
    }
  }
  tInheritanceList(const tInheritanceList&) = delete;
  tInheritanceList& operator=(const tInheritanceList&) = delete;
  ~tInheritanceList() {
    if (list_ != nullptr) {
      DeleteProcThreadAttributeList(list_);
    }
  }

  [[nodiscard]] bool isValid() const noexcept { return isValid_; }
  [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST get() const noexcept { return list_; }

 private:
  std::vector<std::byte> memory_;
  LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
  bool isValid_ = false;
};

// ---- The program ----

class tWindowsProgram final : public iProgram {
 public:
  tWindowsProgram(tHandle job, tHandle process, DWORD group) noexcept
      : job_(std::move(job)), process_(std::move(process)), group_(group) {}
  ~tWindowsProgram() override {
    if (hasEnded_) {
      // Processes that the program left running continue.
      setEndsWithItsHandle(job_.get(), false);
    }
  }

  [[nodiscard]] std::optional<uint32_t> wait(std::chrono::milliseconds time) noexcept override {
    DWORD code = 0;
    hasEnded_ = hasEnded_ || WaitForSingleObject(process_.get(),
                                                 static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
    return hasEnded_ && GetExitCodeProcess(process_.get(), &code) ? std::optional<uint32_t>(code)
                                                                  : std::nullopt;
  }
  [[nodiscard]] bool requestEnd() noexcept override {
    return GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, group_) != FALSE;
  }
  void terminate() noexcept override { TerminateJobObject(job_.get(), kTerminated); }

 private:
  // The exit code of terminated processes.
  static constexpr UINT kTerminated = 1;

  tHandle job_;
  tHandle process_;
  DWORD group_;
  bool hasEnded_ = false;
};

}  // namespace

std::unique_ptr<iProgram> tPrograms::start(std::span<const std::string> words,
                                           tProgramOutput output, std::error_code& failure) {
  std::wstring commandLine = wide(commandLineOf(words));
  tInheritedStreams streams(output);
  const tInheritanceList inherited(streams);
  tHandle job = createJob();
  if (!inherited.isValid() || !job) {
    failure = lastError();
    return nullptr;
  }
  STARTUPINFOEXW startup{};
  startup.StartupInfo.cb = sizeof startup;
  startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  startup.StartupInfo.hStdInput = streams.input();
  startup.StartupInfo.hStdOutput = streams.output();
  startup.StartupInfo.hStdError = streams.error();
  startup.lpAttributeList = inherited.get();
  PROCESS_INFORMATION started{};
  // Suspended, so that the program starts no process before it is in the job.
  constexpr DWORD kFlags =
      CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT;
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, streams.count() > 0, kFlags,
                      nullptr, nullptr, &startup.StartupInfo, &started)) {
    failure = lastError();
    return nullptr;
  }
  tHandle process(started.hProcess);
  const tHandle thread(started.hThread);
  if (!AssignProcessToJobObject(job.get(), process.get())) {
    failure = lastError();
    TerminateProcess(process.get(), 1);
    return nullptr;
  }
  ResumeThread(thread.get());
  return std::make_unique<tWindowsProgram>(std::move(job), std::move(process), started.dwProcessId);
}

}  // namespace nCommandLine
