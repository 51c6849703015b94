#ifndef TOOLS_QUENRA_OUTPUT_TJSONDOCUMENT_H
#define TOOLS_QUENRA_OUTPUT_TJSONDOCUMENT_H

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {

// The document that a command prints with --json. It begins with the members that all documents
// share; docs/schema describes them. Compatibility: add members, never remove or change one.
class tJsonDocument {
 public:
  tJsonDocument(std::string_view kind, tExitCode exitCode, std::span<const tWarning> warnings = {});

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
  void unsignedNumber(std::string_view key, uint64_t value);
  void truth(std::string_view key, bool value);
  void null(std::string_view key);
  // Writes the code and the constant of a status.
  void status(std::string_view key, int32_t code);

  // Ends the document and writes it with a line end.
  void writeTo(std::ostream& stream);

 private:
  void key(std::string_view key);
  void codeAndConstant(int32_t code);
  void writeWarnings(std::span<const tWarning> warnings);

  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace nCommandLine

#endif
