#ifndef SIMULATOR_QUENRA_SIM_VERBS_OUTPUT_H
#define SIMULATOR_QUENRA_SIM_VERBS_OUTPUT_H

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>

#include "tools/quenra/text/utf8text.h"

namespace nSimulator {

// Two digits for each byte.
[[nodiscard]] inline std::string hexadecimal(const uint8_t* bytes, size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

// Writes one JSON document to standard output on destruction.
class tJsonDocument {
 public:
  tJsonDocument() = default;
  tJsonDocument(const tJsonDocument&) = delete;
  tJsonDocument& operator=(const tJsonDocument&) = delete;
  ~tJsonDocument() { std::cout << buffer_.GetString() << '\n'; }

  void begin() { writer_.StartObject(); }
  void end() { writer_.EndObject(); }
  void beginList(const char* key) {
    writer_.Key(key);
    writer_.StartArray();
  }
  void endList() { writer_.EndArray(); }
  void member(const char* key, uint64_t value) {
    writer_.Key(key);
    writer_.Uint64(value);
  }
  void member(const char* key, const std::string& value) {
    writer_.Key(key);
    const std::string text = nCommandLine::jsonText(value);
    writer_.RawValue(text.data(), text.size(), rapidjson::kStringType);
  }

 private:
  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace nSimulator

#endif
