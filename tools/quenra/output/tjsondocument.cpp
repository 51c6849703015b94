#include "tools/quenra/output/tjsondocument.h"

#include <string>

#include "tools/commandline/utf8text.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

// Increment only when a member changes its meaning.
constexpr int kFormat = 1;

rapidjson::SizeType lengthOf(std::string_view text) {
  return static_cast<rapidjson::SizeType>(text.size());
}

}  // namespace

tJsonDocument::tJsonDocument(std::string_view kind, tExitCode exitCode,
                             std::span<const tWarning> warnings) {
  writer_.SetIndent(' ', 2);
  writer_.StartObject();
  number("format", kFormat);
  text("kind", kind);
  number("exitCode", exitNumber(exitCode));
  writeWarnings(warnings);
}

tJsonDocument::tJsonDocument(std::string_view event, std::chrono::milliseconds elapsed) {
  writer_.SetIndent(' ', 0);
  writer_.StartObject();
  number("format", kFormat);
  text("event", event);
  number("sinceStartMilliseconds", elapsed.count());
}

void tJsonDocument::beginObject(std::string_view name) {
  key(name);
  writer_.StartObject();
}
void tJsonDocument::beginObject() {
  writer_.StartObject();
}
void tJsonDocument::endObject() {
  writer_.EndObject();
}

void tJsonDocument::beginArray(std::string_view name) {
  key(name);
  writer_.StartArray();
}
void tJsonDocument::endArray() {
  writer_.EndArray();
}

void tJsonDocument::text(std::string_view name, std::string_view value) {
  key(name);
  textItem(value);
}

void tJsonDocument::textItem(std::string_view value) {
  const std::string text = jsonText(value);
  writer_.RawValue(text.data(), text.size(), rapidjson::kStringType);
}

void tJsonDocument::optionalText(std::string_view name, std::string_view value) {
  if (value.empty()) {
    null(name);
  } else {
    text(name, value);
  }
}

void tJsonDocument::number(std::string_view name, int64_t value) {
  key(name);
  writer_.Int64(value);
}

void tJsonDocument::numberItem(int64_t value) {
  writer_.Int64(value);
}

void tJsonDocument::unsignedNumber(std::string_view name, uint64_t value) {
  key(name);
  writer_.Uint64(value);
}

void tJsonDocument::truth(std::string_view name, bool value) {
  key(name);
  writer_.Bool(value);
}

void tJsonDocument::null(std::string_view name) {
  key(name);
  writer_.Null();
}

void tJsonDocument::status(std::string_view name, int32_t code) {
  beginObject(name);
  codeAndConstant(code);
  endObject();
}

void tJsonDocument::writeTo(std::ostream& stream) {
  writer_.EndObject();
  stream << std::string_view(buffer_.GetString(), buffer_.GetSize()) << '\n';
}

void tJsonDocument::writeLineTo(std::ostream& stream) {
  writer_.EndObject();
  // The writer begins lines with blanks; within a text it escapes line ends.
  const std::string_view pretty(buffer_.GetString(), buffer_.GetSize());
  bool isIndentation = false;
  for (const char character : pretty) {
    isIndentation = character == '\n' || (isIndentation && character == ' ');
    if (!isIndentation) {
      stream << character;
    }
  }
  stream << '\n' << std::flush;
}

void tJsonDocument::key(std::string_view name) {
  writer_.Key(name.data(), lengthOf(name));
}

void tJsonDocument::codeAndConstant(int32_t code) {
  number("code", code);
  optionalText("constant", explainStatus(code).constant);
}

void tEventLines::write(std::string_view event, const tWriteMembers& members) {
  tJsonDocument document(event, stopwatch_.elapsed());
  members(document);
  document.writeLineTo(stream_);
}

void tEventLines::writeResult(tJsonDocument& document) {
  document.text("event", "result");
  document.number("sinceStartMilliseconds", stopwatch_.elapsed().count());
  document.writeLineTo(stream_);
}

void tJsonDocument::writeWarnings(std::span<const tWarning> warnings) {
  beginArray("warnings");
  for (const tWarning& warning : warnings) {
    const tStatusExplanation explanation = explainStatus(warning.code);
    beginObject();
    text("about", warning.about);
    codeAndConstant(warning.code);
    text("meaning", explanation.meaning);
    text("advice", explanation.advice);
    endObject();
  }
  endArray();
}

}  // namespace nCommandLine
