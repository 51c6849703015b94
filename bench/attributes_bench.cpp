// attributes_bench: reading attributes that the SMBIOS table answers, by one thread and by two, and the
// cost of installing and reading tables of many sizes.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/machine.h"
#include "bench/measurement.h"
#include "bench/peers.h"
#include "quenra.h"
#include "source/user/attributes/attributetables.h"
#include "zosmbios/czosmbiosprovider.h"

namespace {

using nBench::fail;
using nBench::repeated;
using nBench::tBound;
using nBench::tLoop;
using nBench::tReport;
using nTests::tSmbiosTableBuilder;

// Stores results, so that the compiler cannot remove the work.
volatile uint64_t seen = 0;

constexpr uint32_t kNumber = QUENRA_ATTRIBUTE_PLATFORM_CODE;  // a word of the platform structure
constexpr uint8_t kPlatformType = 0x96;
constexpr size_t kPlatformCodeOffset = 0x06;
constexpr uint32_t kText = QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER;

// ---- Reads through the exports ----

uint32_t readNumber(uint32_t attribute) {
  uint32_t value = 0;
  if (QUENRA_getAttributeU32(QUENRA_HANDLE, attribute, &value) != 0) {
    fail("attribute " + std::to_string(attribute) + " cannot be read");
  }
  return value;
}

uint64_t readText(uint32_t attribute, std::array<char, 256>& text) {
  uint64_t size = text.size();
  if (QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text.data(), &size) != 0) {
    fail("attribute " + std::to_string(attribute) + " cannot be read");
  }
  return size;
}

tLoop numberReader(uint32_t attribute) {
  return repeated([attribute] { seen = readNumber(attribute); });
}

tLoop textReader(uint32_t attribute) {
  return repeated([attribute, text = std::array<char, 256>{}]() mutable {
    readText(attribute, text);
    seen = static_cast<uint8_t>(text[0]);
  });
}

// ---- References ----

// A word of a table, read under a lock that no other thread wants, with a check of the bounds.
class tLockedTable {
 public:
  explicit tLockedTable(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

  uint32_t word(size_t offset) {
    const nBench::tLocked locked(lock_);
    return bytes_.at(offset) | static_cast<uint32_t>(bytes_.at(offset + 1)) << 8;
  }
  void copyText(size_t offset, size_t length, char* to) {
    const nBench::tLocked locked(lock_);
    if (offset > bytes_.size() || length > bytes_.size() - offset) {
      fail("the text lies outside the table");
    }
    std::memcpy(to, bytes_.data() + offset, length);
  }

 private:
  nBench::tLock lock_;
  std::vector<uint8_t> bytes_;
};

// Finds the first structure of a type, a byte at a time, and returns the offset of a field in the table.
size_t walkTo(const std::vector<uint8_t>& table, uint8_t type, size_t field) {
  size_t at = 0;
  while (at + 4 <= table.size()) {
    const size_t length = table[at + 1];
    if (table[at] == type && field < length) {
      return at + field;
    }
    at += length;
    while (at + 1 < table.size() && (table[at] != 0 || table[at + 1] != 0)) {
      ++at;
    }
    at += 2;
  }
  fail("the table has no such structure");
}

// ---- Measurements ----

void measureReads(tReport& report, const std::vector<uint8_t>& table) {
  report.section("Attributes of the SMBIOS table");
  auto locked = std::make_shared<tLockedTable>(table);
  const volatile size_t offset = walkTo(table, kPlatformType, kPlatformCodeOffset);
  if (locked->word(offset) != readNumber(kNumber)) {
    fail("the library and the walk disagree");
  }
  report.compare({"number",
                  "uncontended lock, bounds-checked load",
                  numberReader(kNumber),
                  repeated([locked, &offset] { seen = locked->word(offset); }),
                  {{tBound::timeAtMost, 2.5}}});

  std::array<char, 256> text{};
  const auto length = std::string_view(text.data(), readText(kText, text)).find('\0') + 1;
  report.compare({"text",
                  "uncontended lock, bounds check, copy of the text",
                  textReader(kText),
                  repeated([locked, length, copy = text]() mutable {
                    locked->copyText(100, length, copy.data());
                    seen = static_cast<uint8_t>(copy[0]);
                  }),
                  {{tBound::timeAtMost, 2.5}}});

  report.compare({"number",
                  "a walk over the table",
                  numberReader(kNumber),
                  repeated([&table] {
                    const size_t at = walkTo(table, kPlatformType, kPlatformCodeOffset);
                    seen = table.at(at) | static_cast<uint32_t>(table.at(at + 1)) << 8;
                  }),
                  {{tBound::speedAtLeast, 10}}});
}

std::string hexadecimal(uint32_t attribute) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(attribute));
  return text.data();
}

struct tNamedLoop {
  std::string name;
  tLoop run;
};

// Every attribute that needs no driver.
std::vector<tNamedLoop> allReads() {
  std::vector<tNamedLoop> reads;
  for (const auto& row : nQUENRA1400::nUnsignedTable::kRows) {
    if (row.rule != nQUENRA1400::tUnsignedRule::driver) {
      reads.push_back({"number " + hexadecimal(row.attribute), numberReader(row.attribute)});
    }
  }
  for (const auto& row : nQUENRA1400::nTextTable::kRows) {
    // Without a selector the Marten device's version would be read.
    const uint32_t attribute = row.attribute | QUENRA_SELECTOR_CONTROLLER;
    reads.push_back({"text " + hexadecimal(attribute), textReader(attribute)});
  }
  return reads;
}

void measureWorstRead(tReport& report) {
  const std::vector<tNamedLoop> reads = allReads();
  std::vector<tLoop> loops;
  for (const tNamedLoop& read : reads) {
    loops.push_back(read.run);
  }
  const tNamedLoop& worst = reads[nBench::slowestOf(loops, 11)];
  report.compare({"slowest of " + std::to_string(reads.size()) + ": " + worst.name,
                  "number",
                  worst.run,
                  numberReader(kNumber),
                  {{tBound::timeAtMost, 4}}});
}

// ---- Two threads ----

// Splits the calls between two threads.
tLoop byTwoThreads(const tLoop& loop) {
  return [loop](size_t times) {
    std::thread other([&loop, times] { loop(times / 2); });
    loop(times - times / 2);
    other.join();
  };
}

void measureThreads(tReport& report) {
  constexpr int kRounds = 21;
  constexpr double kSeconds = 0.05;  // the start of a thread must not count
  report.section("Two threads");
  // The reads must share no result either.
  const tLoop read = [](size_t times) {
    uint32_t sum = 0;
    for (size_t i = 0; i < times; ++i) {
      sum += readNumber(kNumber);
    }
    seen = sum;
  };
  const tLoop arithmetic = [](size_t times) {
    uint64_t value = times;
    for (size_t i = 0; i < times; ++i) {
      for (int step = 0; step < 16; ++step) {
        value = value * 6364136223846793005u + 1442695040888963407u;
      }
    }
    seen = value;
  };
  report.compare({"two threads reading a number",
                  "one thread",
                  byTwoThreads(read),
                  read,
                  {{tBound::speedAtLeast, 1.9}},
                  kRounds,
                  kSeconds});
  report.compare({"two threads, arithmetic alone",
                  "one thread",
                  byTwoThreads(arithmetic),
                  arithmetic,
                  {{tBound::speedAtLeast, 1.9}},
                  kRounds,
                  kSeconds});
}

// ---- Sizes ----

// A provider whose table comes from the measurement.
class tInstalledProvider final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
 public:
  void load(nZOAPALS100::tStatus&) noexcept override {}
};

void install(tInstalledProvider& provider, const std::vector<uint8_t>& table) {
  nZOAPALS100::tStatus status;
  provider.install(table, {}, status);
  if (status.isError()) {
    fail("the table cannot be installed");
  }
}

std::shared_ptr<tInstalledProvider> installedProvider(const std::vector<uint8_t>& table) {
  auto provider = std::make_shared<tInstalledProvider>();
  install(*provider, table);
  return provider;
}

tLoop fieldReader(const std::vector<uint8_t>& table, nQUENRA1400::nZOSMBIOS_1_1::tFieldId field,
                  uint32_t instance) {
  return repeated([provider = installedProvider(table), field, instance] {
    uint16_t value = 0;
    if (provider->readWord(field, instance, &value) != 0) {
      fail("the field cannot be read");
    }
    seen = value;
  });
}

// An array and its modules; at most 65535.
std::vector<uint8_t> tableOfModules(size_t count) {
  tSmbiosTableBuilder builder;
  const auto append = [&builder](const nTests::tSmbiosStructure& structure) {
    builder.structure(structure.type(), structure.body());
  };
  append(nTests::tSmbiosStructure(0x10, 0x17).word(0x0D, static_cast<uint16_t>(count)));
  for (size_t i = 0; i < count; ++i) {
    append(nTests::tSmbiosStructure(0x11, 0x22).word(0x0C, 0x2000));
  }
  return builder.build();
}

void findModules(tInstalledProvider& provider, size_t count) {
  zoerr::tOwnedStatus status;
  nQUENRA1400::tMemoryModules modules;
  modules.find(provider, status);
  if (status.isError() || modules.count() != count) {
    fail("the modules are not found");
  }
}

void measureSizes(tReport& report) {
  constexpr int kRounds = 11;
  report.section("Table sizes");
  const std::vector<size_t> sizes = {1 << 10,   4 << 10, 16 << 10, 64 << 10,
                                     256 << 10, 1 << 20, 4 << 20,  16 << 20};
  report.curve(
      {"install and index a table", "bytes",
       [](size_t size) {
         return repeated([provider = std::make_shared<tInstalledProvider>(),
                          table = nBench::machineTable(size)] { install(*provider, table); });
       }},
      sizes, kRounds);
  report.curve({"copy a table into fresh memory", "bytes",
                [](size_t size) {
                  return repeated([table = nBench::machineTable(size)] {
                    nBench::copyIntoFreshMemory(table.data(), table.size());
                  });
                }},
               sizes, kRounds);
  report.curve({"read a number", "bytes of the table",
                [](size_t size) {
                  return fieldReader(nBench::machineTable(size),
                                     nQUENRA1400::nZOSMBIOS_1_1::wordField(0x96, 0x06), 0);
                }},
               sizes, kRounds);
  const std::vector<size_t> modules = {1, 4, 16, 64, 256, 1024, 4096, 16384, 65535};
  report.curve({"find the memory modules", "modules",
                [](size_t count) {
                  return repeated([provider = installedProvider(tableOfModules(count)), count] {
                    findModules(*provider, count);
                  });
                }},
               modules, kRounds);
  report.curve({"read a number of the last module", "modules",
                [](size_t count) {
                  return fieldReader(tableOfModules(count),
                                     nQUENRA1400::nZOSMBIOS_1_1::wordField(0x11, 0x0C),
                                     static_cast<uint32_t>(count - 1));
                }},
               modules, kRounds);
}

}  // namespace

int main(int argc, char** argv) {
  tReport report(argc, argv);
  const nBench::tOpenMachine machine(nBench::machineTable(4096));
  measureReads(report, machine.table());
  measureWorstRead(report);
  measureThreads(report);
  measureSizes(report);
  return 0;
}
