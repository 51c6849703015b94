#include "tests/component/commandline/tscriptedrouting.h"

#include <cstring>

namespace nTests {
namespace {

struct tTerminalRow {
  const char* name;
  uint32_t id;
  const char* visibility;
  const char* busType;
  uint32_t busLine;
  bool isExternal;
};

constexpr tTerminalRow kTerminals[] = {
    {"FLOAT", 1, "private", nullptr, 0xFFFFFFFF, false},
    {"TRIG_SMB", 2, "public", nullptr, 0xFFFFFFFF, false},
    {"PXI_Trig0", 4, "public", "PXI_Trig", 0, true},
};

// Opaque handles: no code dereferences them.
char sessionHandle = 0;
char iteratorHandle = 0;

std::string firstWord(const std::string& call) {
  return call.substr(0, call.find(' '));
}

}  // namespace

bool tScriptedRouting::take(const std::string& call, zoerr_Status* status) {
  if (status->code < 0) {
    return false;
  }
  calls.push_back(call);
  const auto code = codes.find(firstWord(call));
  status->code = code == codes.end() ? 0 : code->second;
  if (status->code != 0 && !description.empty() &&
      status->reallocate(status, static_cast<uint32_t>(description.size() + 1))) {
    description.copy(status->description, description.size());
    status->description[description.size()] = '\0';
  }
  return status->code >= 0;
}

void tScriptedRouting::answer(const std::string& text, char** output, zoerr_Status* status) const {
  char* const buffer = reallocate_(*output, text.size() + 1, text.c_str(), text.size() + 1);
  if (buffer == nullptr) {
    status->code = QUENRA_STATUS_MEMORY_FULL;
    return;
  }
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  *output = buffer;
}

void tScriptedRouting::demote(int32_t reason) {
  zoerr_Status status = zoerr_Status_initial();
  callback_(context_, reason, &status, this);
  zoerr_Status_release(&status);
}

void tScriptedRouting::demoteOnItsThread(std::vector<int32_t> reasons) {
  thread_ = std::thread([this, list = std::move(reasons)] {
    for (const int32_t reason : list) {
      demote(reason);
    }
  });
}

tScriptedRouting::tSession* tScriptedRouting::createSession(const char* device,
                                                            zoroco_Reallocate reallocate,
                                                            zoroco_DemotionCallback callback,
                                                            void* context,
                                                            zoerr_Status* status) noexcept {
  if (!take("open " + std::string(device), status)) {
    return nullptr;
  }
  ++sessions;
  reallocate_ = reallocate;
  callback_ = callback;
  context_ = context;
  return reinterpret_cast<tSession*>(&sessionHandle);
}

void tScriptedRouting::destroySession(tSession* session) noexcept {
  sessions -= session == nullptr ? 0 : 1;
  if (thread_.joinable()) {
    thread_.join();
  }
  calls.emplace_back("close");
}

void tScriptedRouting::calculateRoute(tSession* /*session*/, const char* seeds,
                                      const char* destinations, const char* modifiers,
                                      char** output, zoerr_Status* status) noexcept {
  if (take(std::string("calculate ") + seeds + " " + destinations + " " + modifiers, status)) {
    if (beforeCalculation) {
      beforeCalculation(calls.back());
    }
    answer(routes, output, status);
  }
}

void tScriptedRouting::reserveRoute(tSession* /*session*/, uint32_t ticket, char** output,
                                    zoerr_Status* status) noexcept {
  if (afterConflicts-- == 0) {
    codes.erase("reserve");
  }
  if (!take("reserve " + std::to_string(ticket), status) &&
      status->code == QUENRA_STATUS_ROUTE_CONFLICT) {
    answer(conflicts, output, status);
  }
}

void tScriptedRouting::programRoute(tSession* /*session*/, uint32_t ticket,
                                    zoerr_Status* status) noexcept {
  if (take("program " + std::to_string(ticket), status) && afterProgramming) {
    afterProgramming();
  }
}

void tScriptedRouting::unprogramRoute(tSession* /*session*/, uint32_t ticket) noexcept {
  calls.push_back("unprogram " + std::to_string(ticket));
}
void tScriptedRouting::unreserveRoute(tSession* /*session*/, uint32_t ticket) noexcept {
  calls.push_back("unreserve " + std::to_string(ticket));
}
void tScriptedRouting::destroyRoute(tSession* /*session*/, uint32_t ticket) noexcept {
  calls.push_back("destroy " + std::to_string(ticket));
}
void tScriptedRouting::beginExceptionalRouteDestruction(tSession* /*session*/,
                                                        uint32_t ticket) noexcept {
  calls.push_back("failed " + std::to_string(ticket));
}

void tScriptedRouting::getRouteTerminalPath(tSession* /*session*/, uint32_t ticket, char** output,
                                            zoerr_Status* status) noexcept {
  if (take("path " + std::to_string(ticket), status)) {
    answer(path, output, status);
  }
}

tScriptedRouting::tIterator* tScriptedRouting::getAllTerminals(tSession* /*session*/,
                                                               zoerr_Status* status) noexcept {
  const auto code = codes.find("terminals");
  if (code != codes.end()) {
    status->code = code->second;
  }
  if (status->code < 0) {
    return nullptr;
  }
  terminal_ = 0;
  ++iterators;
  return reinterpret_cast<tIterator*>(&iteratorHandle);
}

void tScriptedRouting::next(tIterator* /*iterator*/, zoerr_Status* status) noexcept {
  terminal_ += status->code < 0 ? 0 : 1;
}
bool tScriptedRouting::isEnd(tIterator* iterator) noexcept {
  return iterator == nullptr || terminal_ >= std::size(kTerminals);
}

const char* tScriptedRouting::getStringAttribute(tIterator* /*iterator*/, const char* name,
                                                 zoerr_Status* status) noexcept {
  const tTerminalRow& row = kTerminals[terminal_];
  const std::string_view wanted = name;
  if (wanted == "name" || wanted == "canonicalName") {
    return row.name;
  }
  if (wanted == "visibility") {
    return row.visibility;
  }
  if (wanted == "busType") {
    return row.busType;
  }
  if (wanted != "busName") {
    status->code = QUENRA_STATUS_BAD_SELECTOR;
  }
  return nullptr;
}

bool tScriptedRouting::getBoolAttribute(tIterator* /*iterator*/, const char* name,
                                        zoerr_Status* status) noexcept {
  const std::string_view wanted = name;
  if (wanted != "isExternal" && wanted != "isOwned" && wanted != "isAlias" &&
      wanted != "isMaskedOut") {
    status->code = QUENRA_STATUS_BAD_SELECTOR;
  }
  const bool isExternal = kTerminals[terminal_].isExternal;
  return (wanted == "isExternal" && isExternal) || (wanted == "isOwned" && !isExternal);
}

uint32_t tScriptedRouting::getU32Attribute(tIterator* /*iterator*/, const char* name,
                                           zoerr_Status* status) noexcept {
  const std::string_view wanted = name;
  if (wanted == "id") {
    return kTerminals[terminal_].id;
  }
  if (wanted != "busLine") {
    status->code = QUENRA_STATUS_BAD_SELECTOR;
  }
  return kTerminals[terminal_].busLine;
}

void tScriptedRouting::destroyIterator(tIterator* iterator) noexcept {
  iterators -= iterator == nullptr ? 0 : 1;
}

}  // namespace nTests
