#include "tests/component/commandline/tscriptedlibrary.h"

#include <cstring>

#include "quenra_attributes.h"

namespace nTests {
namespace {

constexpr uint64_t kHandle = 0x514E5241;

}  // namespace

void tScriptedLibrary::text(uint32_t id, std::string value, int32_t code) {
  answers_[id] = {code, true, std::move(value), 0};
}
void tScriptedLibrary::number(uint32_t id, uint32_t value, int32_t code) {
  answers_[id] = {code, true, "", value};
}
void tScriptedLibrary::code(uint32_t id, int32_t code) {
  answers_[id] = {code, false, "", 0};
}

int32_t tScriptedLibrary::openController(uint64_t* handle) noexcept {
  if (openCode >= 0) {
    ++opens;
    *handle = kHandle;
  }
  return openCode;
}

void tScriptedLibrary::closeController(uint64_t handle) noexcept {
  closes += handle == kHandle ? 1 : 0;
}

int32_t tScriptedLibrary::getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                                           uint64_t* size) noexcept {
  if (beforeText_) {
    beforeText_();
  }
  const tAnswer& answer = answerTo(handle, attribute);
  if (!answer.writes) {
    return answer.code;
  }
  const uint64_t needed = answer.text.size() + 1;
  if (*size < needed) {
    *size = needed;
    return QUENRA_STATUS_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, answer.text.c_str(), needed);
  return answer.code;
}

int32_t tScriptedLibrary::getAttributeU32(uint64_t handle, uint32_t attribute,
                                          uint32_t* value) noexcept {
  const tAnswer& answer = answerTo(handle, attribute);
  *value = answer.number;
  return answer.code;
}

int32_t tScriptedLibrary::setAttributeUTF8(uint64_t handle, uint32_t attribute,
                                           const char* text) noexcept {
  return take(handle, {attribute, std::string(text)});
}

int32_t tScriptedLibrary::setAttributeU32(uint64_t handle, uint32_t attribute,
                                          uint32_t value) noexcept {
  return take(handle, {attribute, value});
}

int32_t tScriptedLibrary::updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                                          uint32_t options) noexcept {
  usedWhileClosed |= !isOpen(handle);
  updates.push_back({std::string(static_cast<const char*>(image), size), options});
  if (duringUpdate) {
    duringUpdate();
  }
  return updateCode;
}

int32_t tScriptedLibrary::performSelfTest(uint64_t handle) noexcept {
  usedWhileClosed |= !isOpen(handle);
  ++selfTests;
  return selfTestCode;
}

int32_t tScriptedLibrary::take(uint64_t handle, tWrite write) {
  usedWhileClosed |= !isOpen(handle);
  writes.push_back(std::move(write));
  return writeCode;
}

bool tScriptedLibrary::isOpen(uint64_t handle) const noexcept {
  return opens > closes && handle == kHandle;
}

const tScriptedLibrary::tAnswer& tScriptedLibrary::answerTo(uint64_t handle, uint32_t attribute) {
  reads.push_back(attribute);
  usedWhileClosed |= !isOpen(handle) && attribute != QUENRA_ATTRIBUTE_DEVICE_PATH;
  const auto answer = answers_.find(attribute);
  return answer == answers_.end() ? none_ : answer->second;
}

}  // namespace nTests
