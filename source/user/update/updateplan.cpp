#include "source/user/update/updateplan.h"

#include <algorithm>

#include "source/user/firmware/imageformat.h"

namespace nQUENRA1400 {
namespace {

struct tPhase {
  char letter;
  uint32_t bits;
};
constexpr tPhase kPhases[] = {{'d', 0x0000}, {'a', 0x4000}, {'b', 0x8000}, {'f', 0xC000}};

constexpr uint32_t kMaxMajor = 255;
constexpr uint32_t kMaxMinor = 15;
constexpr uint32_t kMaxUpdate = 15;
constexpr uint32_t kMaxBuild = 16383;

// More digits than the largest number has. Reading stops there: a version can be as long as an image.
constexpr size_t kMaxDigits = 6;

constexpr bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

// Reads the parts of a version in their order, and remembers whether one of them is wrong.
class tVersionReader {
 public:
  explicit tVersionReader(std::string_view text) noexcept : rest_(text) {}

  uint32_t number(uint32_t limit) noexcept {
    const bool beginsWithZero = rest_.starts_with('0');
    const size_t available = std::min(rest_.size(), kMaxDigits);
    uint32_t value = 0;
    size_t digits = 0;
    while (digits < available && isDigit(rest_[digits])) {
      value = value * 10 + static_cast<uint32_t>(rest_[digits] - '0');
      ++digits;
    }
    isGood_ = isGood_ && digits != 0 && value <= limit && !(beginsWithZero && digits > 1);
    rest_.remove_prefix(digits);
    return value;
  }
  void dot() noexcept {
    isGood_ = isGood_ && rest_.starts_with('.');
    skip();
  }
  uint32_t phase() noexcept {
    for (const tPhase& phase : kPhases) {
      if (rest_.starts_with(phase.letter)) {
        skip();
        return phase.bits;
      }
    }
    isGood_ = false;
    return 0;
  }
  [[nodiscard]] bool isGood() const noexcept { return isGood_; }

 private:
  void skip() noexcept { rest_.remove_prefix(rest_.empty() ? 0 : 1); }

  std::string_view rest_;
  bool isGood_ = true;
};

// The devices whose installed firmware is not older than a section of the image.
struct tCurrentDevices {
  bool bios = false;
  bool marten = false;
};

tCurrentDevices currentDevices(std::span<const tSectionFacts> sections) noexcept {
  tCurrentDevices current;
  for (const tSectionFacts& section : sections) {
    if (section.isCurrent()) {
      current.bios = current.bios || section.targetDevice == nImageFormat::kBios;
      current.marten = current.marten || section.targetDevice == nImageFormat::kMarten;
    }
  }
  return current;
}

// Chooses the action for a section that is not refused.
tSectionAction actionFor(const tSectionFacts& section, const tCurrentDevices& current) noexcept {
  const std::string_view file = section.targetFileName;
  if (current.bios && current.marten) {
    return tSectionAction::leaveOut;
  }
  if (section.targetDevice == nImageFormat::kBios && file.empty()) {
    return current.bios ? tSectionAction::leaveOut : tSectionAction::sendToController;
  }
  if (file.find(nImageFormat::kDriverPackage) != std::string_view::npos) {
    return tSectionAction::installPackage;
  }
  if (section.targetDevice == nImageFormat::kMarten) {
    return current.marten ? tSectionAction::leaveOut : tSectionAction::sendToMarten;
  }
  return file.empty() ? tSectionAction::nothing : tSectionAction::writeFile;
}

tSectionDecision decide(const tSectionFacts& section, const tCurrentDevices& current,
                        bool hasMarten) noexcept {
  if (section.isFaulty) {
    return {tSectionAction::refuse, tSectionAction::refuse};
  }
  if (section.targetDevice == nImageFormat::kMarten && !hasMarten) {
    return {tSectionAction::refuse, tSectionAction::refuse, &nUpdateSites::kNoMarten};
  }
  const tSectionAction action = actionFor(section, current);
  return {action, action};
}

bool isRefused(const tSectionDecision& decision) noexcept {
  return decision.action == tSectionAction::refuse;
}

// An update applies no section if it refuses one.
void keepOthersBack(std::vector<tSectionDecision>& decisions) noexcept {
  for (tSectionDecision& decision : decisions) {
    if (!isRefused(decision)) {
      decision.action = tSectionAction::keepBack;
    }
  }
}

}  // namespace

uint32_t packedVersion(std::string_view text) noexcept {
  tVersionReader reader(text);
  uint32_t packed = reader.number(kMaxMajor) << 24;
  reader.dot();
  packed |= reader.number(kMaxMinor) << 20;
  reader.dot();
  packed |= reader.number(kMaxUpdate) << 16;
  packed |= reader.phase();
  packed |= reader.number(kMaxBuild);
  return reader.isGood() ? packed : 0;
}

const tFailureSite* tUpdatePlan::refusal() const noexcept {
  const auto refused = std::ranges::find_if(
      sections, [](const tSectionDecision& decision) { return decision.refusal != nullptr; });
  return refused == sections.end() ? nullptr : refused->refusal;
}

tUpdatePlan planUpdate(std::span<const tSectionFacts> sections, bool hasMarten) {
  const tCurrentDevices current = currentDevices(sections);
  tUpdatePlan plan;
  plan.isEverythingCurrent = current.bios && current.marten;
  plan.sections.reserve(sections.size());
  for (const tSectionFacts& section : sections) {
    plan.sections.push_back(decide(section, current, hasMarten));
  }
  if (std::ranges::any_of(plan.sections, isRefused)) {
    keepOthersBack(plan.sections);
  }
  return plan;
}

}  // namespace nQUENRA1400
