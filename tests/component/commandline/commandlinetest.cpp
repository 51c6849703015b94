#include "tests/component/commandline/commandlinetest.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "tools/quenra/commandline.h"

namespace nTests {
namespace {

class tScriptedProgram final : public nCommandLine::iProgram {
 public:
  explicit tScriptedProgram(tScriptedPrograms& script) : script_(script), polls_(script.polls) {}
  ~tScriptedProgram() override { script_.calls.emplace_back("release"); }

  [[nodiscard]] std::optional<uint32_t> wait(std::chrono::milliseconds time) noexcept override {
    if (--polls_ > 0) {
      std::this_thread::sleep_for(std::min(time, std::chrono::milliseconds(1)));
      return std::nullopt;
    }
    script_.calls.emplace_back("end");
    return script_.exitCode;
  }
  [[nodiscard]] bool requestEnd() noexcept override {
    script_.calls.emplace_back("request");
    polls_ = script_.acceptsRequests && script_.endsOnRequest ? 1 : polls_;
    return script_.acceptsRequests;
  }
  void terminate() noexcept override {
    script_.calls.emplace_back("terminate");
    polls_ = 1;
  }

 private:
  tScriptedPrograms& script_;
  int polls_;
};

}  // namespace

std::unique_ptr<nCommandLine::iProgram> tScriptedPrograms::start(
    std::span<const std::string> command, nCommandLine::tProgramOutput outputOfProgram,
    std::error_code& failure) {
  words.assign(command.begin(), command.end());
  output = outputOfProgram;
  if (startFailure) {
    failure = startFailure;
    return nullptr;
  }
  calls.emplace_back("start");
  if (onStart) {
    onStart();
  }
  return std::make_unique<tScriptedProgram>(*this);
}

std::string tTestFiles::path(std::string_view name) const {
  const std::u8string path = pathOf(name).generic_u8string();
  return {path.begin(), path.end()};
}

std::string tTestFiles::file(std::string_view name, std::string_view content) const {
  std::ofstream stream(pathOf(name), std::ios::binary);
  stream << content;
  EXPECT_TRUE(stream.good());
  return path(name);
}

std::string tTestFiles::content(std::string_view name) const {
  std::ifstream stream(pathOf(name), std::ios::binary);
  return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "(none)";
}

size_t tTestFiles::files() const {
  const std::filesystem::directory_iterator files(folder_.path());
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

std::filesystem::path tTestFiles::pathOf(std::string_view name) const {
  return folder_.path() / std::u8string(name.begin(), name.end());
}

rapidjson::Document tRun::document() const {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseValidateEncodingFlag>(out.data(), out.size());
  EXPECT_FALSE(document.HasParseError()) << out;
  EXPECT_TRUE(document.IsObject()) << out;
  return document;
}

CommandLineTest::~CommandLineTest() {
  EXPECT_EQ(library_.opens, library_.closes) << "a controller was left open";
  EXPECT_FALSE(library_.usedWhileClosed);
  EXPECT_EQ(routing_.sessions, 0) << "a routing session was left open";
  EXPECT_EQ(routing_.iterators, 0);
  EXPECT_FALSE(driver_.isOpen) << "the driver was left open";
  EXPECT_EQ(lock_.held, 0) << "the lock of updates was not released";
}

tRun CommandLineTest::run(const std::vector<std::string>& words) {
  return runWith(words, false);
}

tRun CommandLineTest::runOnTerminal(const std::vector<std::string>& words) {
  return runWith(words, true);
}

tRun CommandLineTest::runOnOutput(const std::vector<std::string>& words,
                                  std::function<std::error_code()> write) {
  nCommandLine::tOutputBuffer buffer([&write](std::string_view) { return write(); });
  std::ostream out(&buffer);
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error, false, false, &buffer};
  const int exitCode = runOn(words, streams);
  return {exitCode, "", error.str()};
}

tRun CommandLineTest::runWith(const std::vector<std::string>& words, bool terminal) {
  std::ostringstream out;
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error, terminal, terminal};
  const int exitCode = runOn(words, streams);
  return {exitCode, out.str(), error.str()};
}

int CommandLineTest::runOn(const std::vector<std::string>& words, nCommandLine::tStreams& streams) {
  std::vector<const char*> arguments{"quenra"};
  for (const std::string& word : words) {
    arguments.push_back(word.c_str());
  }
  return nCommandLine::runCommandLine(
      static_cast<int>(arguments.size()), arguments.data(), streams,
      {library_, routing_, facts_, interruption_, lock_, installation_, driver_, programs_});
}

std::vector<std::string> wordsOf(std::string_view verb) {
  std::istringstream stream{std::string(verb)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) {
    words.push_back(word);
  }
  return words;
}

std::vector<std::string> memberNames(const rapidjson::Value& object) {
  std::vector<std::string> names;
  for (const auto& member : object.GetObject()) {
    names.emplace_back(member.name.GetString());
  }
  return names;
}

const rapidjson::Value& itemWith(const rapidjson::Value& array, const char* member,
                                 std::string_view text) {
  static const rapidjson::Value kNone(rapidjson::kObjectType);
  for (const rapidjson::Value& item : array.GetArray()) {
    if (item[member].IsString() && item[member].GetString() == text) {
      return item;
    }
  }
  ADD_FAILURE() << "no item has " << member << " " << text;
  return kNone;
}

}  // namespace nTests
