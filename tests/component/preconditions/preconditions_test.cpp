#include "source/user/preconditions/preconditions.h"

#include <gtest/gtest.h>
#include <windows.h>
// Both need windows.h first.
#include <objbase.h>
#include <wbemcli.h>

#include <thread>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/session/sessiontest.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using nFakeWindows::com;
using nFakeWindows::faultPlan;
using nFakeWindows::tCall;

constexpr auto kRefused = static_cast<uint32_t>(E_ACCESSDENIED);

struct tEncryption {
  bool isEncrypted = false;
  tOutcome outcome;
  bool operator==(const tEncryption&) const = default;
};
void PrintTo(const tEncryption& answer, std::ostream* out) {
  *out << (answer.isEncrypted ? "encrypted, " : "not encrypted, ");
  PrintTo(answer.outcome, out);
}

tEncryption queryEncryption() {
  zoerr::tOwnedStatus status;
  const bool isEncrypted = nQUENRA1400::IsSystemDriveEncrypted(status);
  return {isEncrypted, outcomeOf(status)};
}

tEncryption failureAt(uint32_t line) {
  return {false, sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, line)};
}
const tEncryption kEncrypted = {true, success()};
const tEncryption kNotEncrypted = {false, success()};

// Fails a test that leaks a COM object, a string or a value, or leaves COM initialised.
class DriveEncryption : public nFakeWindows::FakeWindowsTest {
 protected:
  void TearDown() override {
    EXPECT_EQ(faultPlan().callCount(tCall::coUninitialize), uninitialisedByTest_ + expectedUses_);
    FakeWindowsTest::TearDown();
  }

  // The test itself uses COM on its thread.
  void enter(DWORD model) { ASSERT_EQ(CoInitializeEx(nullptr, model), S_OK); }
  void leave() {
    CoUninitialize();
    ++uninitialisedByTest_;
  }
  void expectNoUse() { expectedUses_ = 0; }
  void expectUses(unsigned count) { expectedUses_ = count; }

 private:
  unsigned uninitialisedByTest_ = 0;
  unsigned expectedUses_ = 1;
};

TEST_F(DriveEncryption, ProtectionOn_IsTheOnlyThingThatCounts) {
  com()->useVolumes({{VT_I4, 1}});
  EXPECT_EQ(queryEncryption(), kEncrypted);
}

TEST_F(DriveEncryption, ProtectionOffOrUnknown_IsNoObstacle) {
  expectUses(4);
  for (const LONG protection : {0, 2, 3, -1}) {
    com()->useVolumes({{VT_I4, protection}});
    EXPECT_EQ(queryEncryption(), kNotEncrypted) << protection;
  }
}

TEST_F(DriveEncryption, UnsignedNumber_CountsAsWell) {
  com()->useVolumes({{VT_UI4, 1}});
  EXPECT_EQ(queryEncryption(), kEncrypted);
}

TEST_F(DriveEncryption, ValueThatIsNotA32BitNumber_IsNoObstacle) {
  expectUses(5);
  for (const VARTYPE type : {VT_NULL, VT_EMPTY, VT_BSTR, VT_I2, VT_BOOL}) {
    com()->useVolumes({{type, 1}});
    EXPECT_EQ(queryEncryption(), kNotEncrypted) << type;
  }
}

TEST_F(DriveEncryption, WithoutSuchAVolume_IsNoObstacle) {
  com()->useVolumes({});
  EXPECT_EQ(queryEncryption(), kNotEncrypted);
  EXPECT_EQ(faultPlan().callCount(tCall::get), 0u);
}

TEST_F(DriveEncryption, OfSeveralVolumes_TheFirstCounts) {
  expectUses(2);
  com()->useVolumes({{VT_I4, 1}, {VT_I4, 0}});
  EXPECT_EQ(queryEncryption(), kEncrypted);
  com()->useVolumes({{VT_I4, 0}, {VT_I4, 1}});
  EXPECT_EQ(queryEncryption(), kNotEncrypted);
  EXPECT_EQ(faultPlan().callCount(tCall::next), 2u) << "one object each time";
}

TEST_F(DriveEncryption, SecuritySetByTheProcess_IsAccepted) {
  com()->initialiseSecurity();
  com()->useVolumes({{VT_I4, 1}});
  EXPECT_EQ(queryEncryption(), kEncrypted);
}

TEST_F(DriveEncryption, AskedAgain_AnswersAgain) {
  expectUses(3);
  com()->useVolumes({{VT_I4, 1}});
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(queryEncryption(), kEncrypted);
  }
}

TEST_F(DriveEncryption, ThreadInTheSameModel_KeepsCom) {
  enter(COINIT_MULTITHREADED);
  com()->useVolumes({{VT_I4, 1}});
  EXPECT_EQ(queryEncryption(), kEncrypted);
  EXPECT_TRUE(com()->isThreadInside());
  leave();
}

TEST_F(DriveEncryption, ThreadInAnApartment_FailsAndKeepsCom) {
  expectNoUse();
  enter(COINIT_APARTMENTTHREADED);
  EXPECT_EQ(queryEncryption(), failureAt(2831));
  EXPECT_TRUE(com()->isThreadInside()) << "what the caller has begun the caller ends";
  leave();
}

TEST_F(DriveEncryption, StatusThatHoldsAnError_IsLeftAlone) {
  expectNoUse();
  zoerr::tOwnedStatus status;
  status.code = -5;
  EXPECT_FALSE(nQUENRA1400::IsSystemDriveEncrypted(status));
  EXPECT_EQ(status.code, -5);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(DriveEncryption, StatusThatHoldsAWarning_IsNoReasonNotToAsk) {
  com()->useVolumes({{VT_I4, 1}});
  zoerr::tOwnedStatus status;
  status.code = 7;
  EXPECT_TRUE(nQUENRA1400::IsSystemDriveEncrypted(status));
  EXPECT_EQ(status.code, 7);
}

TEST_F(DriveEncryption, ManyThreadsAtOnce_EachKeepItsOwnCom) {
  constexpr unsigned kThreads = 4;
  constexpr unsigned kTimes = 50;
  expectUses(kThreads * kTimes);
  com()->useVolumes({{VT_I4, 1}});
  std::vector<std::thread> threads;
  std::atomic<unsigned> encrypted = 0;
  for (unsigned i = 0; i < kThreads; ++i) {
    threads.emplace_back([&encrypted] {
      for (unsigned time = 0; time < kTimes; ++time) {
        encrypted += queryEncryption() == kEncrypted ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(encrypted, kThreads * kTimes);
}

// A call that fails, and the resulting answer.
struct tFailingCall {
  tCall call;
  unsigned nth;
  uint32_t result;
  tEncryption answer;
  bool usesCom = true;
};
void PrintTo(const tFailingCall& failing, std::ostream* out) {
  *out << nameOf(failing.call) << ", call " << failing.nth;
}

class DriveEncryptionFailures : public DriveEncryption,
                                public testing::WithParamInterface<tFailingCall> {};

TEST_P(DriveEncryptionFailures, EachIsReportedAndLeavesNothingOpen) {
  com()->useVolumes({{VT_I4, 1}});
  expectUses(GetParam().usesCom ? 1 : 0);
  faultPlan().failCall(GetParam().call, GetParam().nth, GetParam().result);
  EXPECT_EQ(queryEncryption(), GetParam().answer);
  EXPECT_EQ(com()->open(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, DriveEncryptionFailures,
    testing::Values(
        tFailingCall{tCall::coInitializeEx, 1, kRefused, failureAt(2831), false},
        tFailingCall{tCall::coInitializeEx, 1, static_cast<uint32_t>(E_OUTOFMEMORY),
                     failureAt(2831), false},
        tFailingCall{tCall::coInitializeSecurity, 1, kRefused, failureAt(2847)},
        tFailingCall{tCall::coInitializeSecurity, 1, static_cast<uint32_t>(RPC_E_TOO_LATE),
                     kEncrypted},
        tFailingCall{tCall::coCreateInstance, 1, static_cast<uint32_t>(REGDB_E_CLASSNOTREG),
                     failureAt(2863)},
        tFailingCall{tCall::sysAllocString, 1, 0, failureAt(2879)},
        tFailingCall{tCall::connectServer, 1, static_cast<uint32_t>(WBEM_E_INVALID_NAMESPACE),
                     failureAt(2879)},
        tFailingCall{tCall::coSetProxyBlanket, 1, static_cast<uint32_t>(E_NOINTERFACE), kEncrypted},
        tFailingCall{tCall::sysAllocString, 2, 0, failureAt(2912)},
        tFailingCall{tCall::sysAllocString, 3, 0, failureAt(2912)},
        tFailingCall{tCall::execQuery, 1, static_cast<uint32_t>(WBEM_E_INVALID_CLASS),
                     failureAt(2912)},
        tFailingCall{tCall::next, 1, static_cast<uint32_t>(WBEM_E_INVALID_CLASS), kNotEncrypted},
        tFailingCall{tCall::get, 1, static_cast<uint32_t>(WBEM_E_NOT_FOUND), kNotEncrypted}));

// ---- The model families ----

class ModelFamilies : public testing::Test {
 protected:
  // The answer for a machine with this product name; null means that it has none.
  bool isOutside(const char* name) {
    tReferenceTable table;
    if (name == nullptr) {
      table.structure(0x01).byte(0x05, 0);
    } else {
      table.structure(0x01).text(0x05, name);
    }
    tInstalledProvider provider;
    nZOAPALS100::tStatus installing;
    provider.install(table.build(), {}, installing);
    EXPECT_EQ(installing.code, 0);
    return nQUENRA1400::IsOutsideModelFamilies(provider);
  }
};

TEST_F(ModelFamilies, NamesOfTheFamilies_AreInside) {
  for (const char* name :
       {"qmod-7100", "qmod-7105", "qmod-7109", "qbrd-4302", "qbrd-4312", "qbrd-4392"}) {
    EXPECT_FALSE(isOutside(name)) << name;
  }
}

TEST_F(ModelFamilies, NamesThatOnlyResembleThem_AreOutside) {
  for (const char* name :
       {"qmod-71050", "QMOD-7105", "xqmod-7105", "qmod-7105 ", " qmod-7105", "qmod-710a",
        "qmod-710", "qbrd-4313", "qbrd-43122", "qbrd-43x2", "qmod-7105\n"}) {
    EXPECT_TRUE(isOutside(name)) << name;
  }
}

// Every character of a name, in every position, replaced, inserted and removed.
TEST_F(ModelFamilies, EveryNeighbourOfAName_IsInsideOnlyWithAnotherDigitOfItsClass) {
  struct tFamily {
    std::string name;
    size_t digit;  // the position of any digit
  };
  for (const tFamily& family : {tFamily{"qmod-7104", 8}, tFamily{"qbrd-4342", 7}}) {
    for (int value = 1; value < 256; ++value) {
      const auto character = static_cast<char>(value);
      for (size_t position = 0; position < family.name.size(); ++position) {
        std::string replaced = family.name;
        replaced[position] = character;
        const bool isDigit = position == family.digit && character >= '0' && character <= '9';
        const bool isInside = isDigit || replaced == family.name;
        EXPECT_EQ(isOutside(replaced.c_str()), !isInside) << replaced;
      }
      for (size_t position = 0; position <= family.name.size(); ++position) {
        std::string longer = family.name;
        longer.insert(position, 1, character);
        EXPECT_TRUE(isOutside(longer.c_str())) << longer;
      }
    }
    for (size_t position = 0; position < family.name.size(); ++position) {
      std::string shorter = family.name;
      shorter.erase(position, 1);
      EXPECT_TRUE(isOutside(shorter.c_str())) << shorter;
    }
  }
}

TEST_F(ModelFamilies, PatternsThemselves_AreOutside) {
  for (const char* name : {"^qmod-710[0-9]$", "qmod-710[0-9]", "qmod-7100$", "^qmod-7100",
                           "qbrd-43[0-9]2", "^qbrd-43[0-9]2$"}) {
    EXPECT_TRUE(isOutside(name)) << name;
  }
}

TEST_F(ModelFamilies, NameThatCannotBeRead_CountsAsInside) {
  EXPECT_FALSE(isOutside(nullptr)) << "no name";
  EXPECT_TRUE(isOutside(std::string(128, 'x').c_str())) << "the longest name there is";
  EXPECT_FALSE(isOutside(std::string(129, 'x').c_str())) << "one character too many";
}

TEST_F(ModelFamilies, WithoutATable_CountsAsInside) {
  tInstalledProvider provider;
  EXPECT_FALSE(nQUENRA1400::IsOutsideModelFamilies(provider));
}

}  // namespace
}  // namespace nTests
