#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDLIBRARY_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDLIBRARY_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "quenra_status.h"
#include "tools/quenra/reading/iquenra.h"

namespace nTests {

// A library with scripted answers. Attributes without an answer are not supported.
class tScriptedLibrary final : public nCommandLine::iQuenra {
 public:
  void text(uint32_t id, std::string value, int32_t code = QUENRA_STATUS_SUCCESS);
  void number(uint32_t id, uint32_t value, int32_t code = QUENRA_STATUS_SUCCESS);
  // Makes reads of the attribute return this code and write nothing.
  void code(uint32_t id, int32_t code);
  // Runs before each answer to a text read.
  void beforeText(std::function<void()> action) { beforeText_ = std::move(action); }

  int32_t openController(uint64_t* handle) noexcept override;
  void closeController(uint64_t handle) noexcept override;
  int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                           uint64_t* size) noexcept override;
  int32_t getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) noexcept override;
  int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text) noexcept override;
  int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept override;
  int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                          uint32_t options) noexcept override;
  int32_t performSelfTest(uint64_t handle) noexcept override;

  struct tWrite {
    uint32_t id;
    std::variant<std::string, uint32_t> value;
    bool operator==(const tWrite&) const = default;
  };

  [[nodiscard]] uint32_t presentInterfaces(nCommandLine::tInterface which) const noexcept override {
    return which == nCommandLine::tInterface::marten ? martens : controllers;
  }

  int32_t openCode = QUENRA_STATUS_SUCCESS;
  uint32_t controllers = 0;
  uint32_t martens = 0;
  int opens = 0;
  int closes = 0;
  std::vector<uint32_t> reads;  // ids, in order
  int32_t writeCode = QUENRA_STATUS_SUCCESS;
  std::vector<tWrite> writes;
  int32_t selfTestCode = QUENRA_STATUS_SUCCESS;
  int selfTests = 0;
  struct tUpdate {
    std::string image;
    uint32_t options;
    bool operator==(const tUpdate&) const = default;
  };
  int32_t updateCode = QUENRA_STATUS_SUCCESS;
  std::vector<tUpdate> updates;
  std::function<void()> duringUpdate;
  bool usedWhileClosed = false;

 private:
  struct tAnswer {
    int32_t code = QUENRA_STATUS_NOT_SUPPORTED;
    bool writes = false;
    std::string text;
    uint32_t number = 0;
  };

  const tAnswer& answerTo(uint64_t handle, uint32_t attribute);
  int32_t take(uint64_t handle, tWrite write);
  [[nodiscard]] bool isOpen(uint64_t handle) const noexcept;

  std::map<uint32_t, tAnswer> answers_;
  tAnswer none_;
  std::function<void()> beforeText_;
};

}  // namespace nTests

#endif
