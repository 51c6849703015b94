#ifndef TOOLS_QUENRA_OUTPUT_TJSONDOCUMENT_H
#define TOOLS_QUENRA_OUTPUT_TJSONDOCUMENT_H

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <ostream>
#include <span>
#include <string_view>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {

// The document that a command prints with --json. It begins with the members that all documents
// share; docs/schema describes them. Compatibility: add members, never remove or change one.
class tJsonDocument {
 public:
  tJsonDocument(std::string_view kind, tExitCode exitCode, std::span<const tWarning> warnings = {});
  // An event, without the members that only documents have.
  tJsonDocument(std::string_view event, std::chrono::milliseconds elapsed);

  void beginObject(std::string_view key);
  void beginObject();  // as an item of an array
  void endObject();
  void beginArray(std::string_view key);
  void endArray();

  void text(std::string_view key, std::string_view value);
  void textItem(std::string_view value);
  // Writes null if the text is empty.
  void optionalText(std::string_view key, std::string_view value);
  void number(std::string_view key, int64_t value);
  void numberItem(int64_t value);
  void unsignedNumber(std::string_view key, uint64_t value);
  void truth(std::string_view key, bool value);
  void null(std::string_view key);
  // Writes the code and the constant of a status.
  void status(std::string_view key, int32_t code);

  // Ends the document and writes it with a line end.
  void writeTo(std::ostream& stream);
  // As above, in one line.
  void writeLineTo(std::ostream& stream);

 private:
  void key(std::string_view key);
  void codeAndConstant(int32_t code);
  void writeWarnings(std::span<const tWarning> warnings);

  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer_{buffer_};
};

// The lines that a long verb prints with --json-lines: one JSON object for each event, as it happens, and at
// the end the document of the verb.
class tEventLines {
 public:
  explicit tEventLines(std::ostream& stream) : stream_(stream) {}

  using tWriteMembers = std::function<void(tJsonDocument& document)>;
  void write(std::string_view event, const tWriteMembers& members);
  // The last line.
  void writeResult(tJsonDocument& document);

 private:
  std::ostream& stream_;
  const tStopwatch stopwatch_;
};

}  // namespace nCommandLine

#endif
