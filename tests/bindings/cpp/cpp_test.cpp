// The C++ interface on the library, in the fake Windows and in the simulated machine.
#include "quenra.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <new>
#include <set>
#include <sstream>
#include <thread>

#include "protocol/controllerrequests.h"
#include "protocol/routingrequests.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/contract/contracttest.h"
#include "tests/contract/updateworld.h"
#include "tools/quenra/tables/statustable.h"

#ifdef _WIN32
// The library has an allocator of its own, so that these functions count the program's allocations.
static thread_local unsigned allocationsOfThread = 0;
void* operator new(std::size_t size) {
  ++allocationsOfThread;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  return memory == nullptr ? throw std::bad_alloc() : memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
#elif defined(TESTS_COUNT_ALLOCATIONS)
#include "tests/fakewindows/allocationplan.h"
#endif

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define TESTS_CAN_FIND_LEAKS 1
#endif
#endif

// examples/controller.cpp
int controllerExample(int argc, char** argv);

namespace nTests {
namespace {

using quenra::status;
using quenra::routing::demotion;
using quenra::routing::inversion;
using quenra::routing::reset_mode;
using quenra::routing::route;
using quenra::routing::session;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int32_t kWarning = 77;
constexpr auto kRouter = kSimulatorInterfaceDevicePath;

// The error that a call throws; the test fails if it throws none.
template <class Error = quenra::error, class Call>
std::unique_ptr<Error> errorOf(Call call) {
  try {
    call();
  } catch (const Error& failure) {
    return std::make_unique<Error>(failure);
  }
  throw std::runtime_error("nothing was thrown");
}

bool becomesTrue(const std::function<bool()>& condition) {
  for (int i = 0; !condition() && i < 2000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

// Clears with success; the test starts from a failure to see that.
std::error_code someError() {
  return std::make_error_code(std::errc::interrupted);
}

// ---- Types ----

static_assert(!std::is_copy_constructible_v<quenra::controller>);
static_assert(!std::is_copy_assignable_v<quenra::controller>);
static_assert(std::is_nothrow_move_constructible_v<quenra::controller>);
static_assert(std::is_nothrow_move_assignable_v<quenra::controller>);
static_assert(std::is_nothrow_swappable_v<quenra::controller>);
static_assert(std::is_nothrow_constructible_v<quenra::controller, std::error_code&>);
static_assert(!std::is_convertible_v<std::error_code&, quenra::controller>);
static_assert(!std::is_copy_constructible_v<session> && !std::is_copy_assignable_v<session>);
static_assert(std::is_nothrow_move_constructible_v<session>);
static_assert(std::is_nothrow_move_assignable_v<session>);
static_assert(!std::is_copy_constructible_v<route> && !std::is_copy_assignable_v<route>);
static_assert(std::is_nothrow_move_constructible_v<route>);
static_assert(std::is_nothrow_move_assignable_v<route>);
static_assert(std::is_base_of_v<std::system_error, quenra::error>);
static_assert(std::is_base_of_v<quenra::error, quenra::routing::conflict>);
static_assert(std::is_nothrow_copy_constructible_v<quenra::error>);
static_assert(std::is_nothrow_copy_constructible_v<quenra::routing::conflict>);
static_assert(std::is_error_code_enum_v<status> && std::is_convertible_v<status, std::error_code>);

using tGivenController = quenra::controller;
static_assert(noexcept(std::declval<tGivenController&>().get(quenra::slot_count,
                                                             std::declval<std::error_code&>())));
static_assert(!noexcept(std::declval<tGivenController&>().get(quenra::product_name,
                                                              std::declval<std::error_code&>())));
static_assert(noexcept(std::declval<tGivenController&>().set(quenra::driver_setting_1, 1,
                                                             std::declval<std::error_code&>())));
static_assert(noexcept(std::declval<tGivenController&>().set(quenra::text_setting_of_both, "",
                                                             std::declval<std::error_code&>())));
static_assert(
    noexcept(std::declval<tGivenController&>().self_test(std::declval<std::error_code&>())));
static_assert(noexcept(std::declval<tGivenController&>().update_firmware(
    quenra::image_view(), quenra::update_options::all, std::declval<std::error_code&>())));
static_assert(noexcept(std::declval<route&>().program(std::declval<quenra::outcome&>())));
static_assert(noexcept(std::declval<route&>().reserve(std::declval<quenra::outcome&>())));
static_assert(noexcept(std::declval<session&>().terminals(std::declval<quenra::outcome&>())));

template <const auto& Attribute>
using tValueOf = decltype(std::declval<quenra::controller&>().get(Attribute));
template <const auto& Attributes>
using tElementOf = decltype(std::declval<quenra::controller&>().get(Attributes[0]));
static_assert(std::is_same_v<tValueOf<quenra::product_name>, std::string>);
static_assert(std::is_same_v<tValueOf<quenra::slot_count>, std::uint32_t>);
static_assert(std::is_same_v<tValueOf<quenra::firmware_update_support>, bool>);
static_assert(std::is_same_v<tValueOf<quenra::link_kind>, quenra::link_type>);
static_assert(std::is_same_v<tValueOf<quenra::interfaces_present>, quenra::interface_set>);
static_assert(std::is_same_v<tElementOf<quenra::memory_speed>, quenra::megatransfers>);
static_assert(std::is_same_v<tElementOf<quenra::memory_size>, quenra::memory_capacity>);
static_assert(std::is_same_v<tElementOf<quenra::processor_maximum_speed>, quenra::megahertz>);

// An instance and a selector can be combined, at compile time.
static_assert(quenra::memory_size[1].id() == QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 1));
static_assert(quenra::memory_size.at(255).id() ==
              QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 255));
static_assert(quenra::memory_size[256].id() == quenra::memory_size[255].id());
static_assert(quenra::firmware_version.on(quenra::marten).id() ==
              (QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN));
static_assert(quenra::firmware_version.on(quenra::marten).on(quenra::selector::controller).id() ==
              (QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER));

static_assert((quenra::update_options::newer | quenra::update_options::all) ==
              quenra::update_options::all);
static_assert((quenra::update_options::newer & quenra::update_options::all) ==
              quenra::update_options::newer);

// A string is the name of a file; bytes are an image.
static_assert(std::is_constructible_v<quenra::image_view, std::vector<std::byte>>);
static_assert(std::is_constructible_v<quenra::image_view, std::array<unsigned char, 3>>);
static_assert(std::is_constructible_v<quenra::image_view, std::vector<char>>);
static_assert(!std::is_constructible_v<quenra::image_view, std::string>);
static_assert(!std::is_constructible_v<quenra::image_view, std::string_view>);
static_assert(!std::is_constructible_v<quenra::image_view, const char (&)[6]>);
static_assert(!std::is_constructible_v<quenra::image_view, std::vector<int>>);
#ifdef __cpp_lib_span
static_assert(std::is_constructible_v<quenra::image_view, std::span<const std::byte>>);
static_assert(std::is_convertible_v<quenra::image_view, std::span<const std::byte>>);
#endif
#ifdef __cpp_lib_ranges
static_assert(std::ranges::input_range<quenra::routing::terminal_range>);
#endif

// ---- Codes ----

TEST(CppStatus, EveryCode_IsExplainedAsOnTheCommandLine) {
  for (const nCommandLine::tStatusRow& row : nCommandLine::kStatuses) {
    const quenra::explanation explanation = quenra::explain(row.code);
    EXPECT_EQ(explanation.constant, row.constant);
    EXPECT_EQ(explanation.meaning, row.meaning);
    EXPECT_EQ(explanation.advice, row.advice);
    EXPECT_EQ(std::error_code(row.code, quenra::category()).message(), row.meaning);
  }
  EXPECT_EQ(std::size(quenra::detail::explanations), nCommandLine::kStatuses.size());
}

TEST(CppStatus, CodesOfTheDriver_AreExplainedAsOnTheCommandLine) {
  for (const int32_t code : {-5, 5}) {
    const nCommandLine::tStatusExplanation expected = nCommandLine::explainStatus(code);
    EXPECT_STREQ(quenra::explain(code).constant, "");
    EXPECT_EQ(quenra::explain(code).meaning, expected.meaning);
    EXPECT_EQ(quenra::explain(code).advice, expected.advice);
  }
}

TEST(CppStatus, Code_ComparesWithStatusAndPortableCondition) {
  const std::error_code code = status::access_denied;
  EXPECT_EQ(code, status::access_denied);
  EXPECT_NE(code, status::busy);
  EXPECT_EQ(code.value(), QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_STREQ(code.category().name(), "quenra");
  EXPECT_TRUE(code == std::errc::permission_denied);
  EXPECT_FALSE(code == std::errc::device_or_resource_busy);
}

TEST(CppStatus, PortableConditions_AreThoseOfTheirMeaning) {
  const std::pair<status, std::errc> kConditions[] = {
      {status::buffer_too_small, std::errc::no_buffer_space},
      {status::driver_buffer_too_small, std::errc::no_buffer_space},
      {status::smbios_buffer_too_small, std::errc::no_buffer_space},
      {status::invalid_handle, std::errc::bad_file_descriptor},
      {status::no_controller, std::errc::no_such_device},
      {status::device_removed, std::errc::no_such_device},
      {status::out_of_memory, std::errc::not_enough_memory},
      {status::memory_full, std::errc::not_enough_memory},
      {status::not_supported, std::errc::not_supported},
      {status::request_not_supported, std::errc::not_supported},
      {status::invalid_value, std::errc::invalid_argument},
      {status::invalid_parameter, std::errc::invalid_argument},
      {status::bad_selector, std::errc::invalid_argument},
      {status::generic_failure, std::errc::io_error},
      {status::not_found, std::errc::no_such_file_or_directory},
      {status::time_out, std::errc::timed_out},
      {status::access_denied, std::errc::permission_denied},
      {status::not_ready, std::errc::resource_unavailable_try_again},
      {status::already_exists, std::errc::file_exists},
      {status::path_too_long, std::errc::filename_too_long},
      {status::busy, std::errc::device_or_resource_busy},
      {status::route_conflict, std::errc::device_or_resource_busy},
      {status::io_pending, std::errc::operation_in_progress},
  };
  std::set<int32_t> portable;
  for (const auto& [code, condition] : kConditions) {
    EXPECT_TRUE(make_error_code(code) == condition) << static_cast<int32_t>(code);
    portable.insert(static_cast<int32_t>(code));
  }
  for (const nCommandLine::tStatusRow& row : nCommandLine::kStatuses) {
    const std::error_code code(row.code, quenra::category());
    EXPECT_EQ(code.default_error_condition().category() == std::generic_category(),
              portable.count(row.code) == 1)
        << row.constant;
  }
}

TEST(CppStatus, Success_IsNoError) {
  EXPECT_FALSE(std::error_code(status::success));
  EXPECT_FALSE(quenra::outcome().failed());
  EXPECT_FALSE(quenra::outcome().warned());
}

TEST(CppStatus, Report_StoresFailuresInACodeAndWarningsInAnOutcome) {
  std::error_code code = someError();
  quenra::report(code).store(kWarning);
  EXPECT_FALSE(code);
  quenra::report(code).store(QUENRA_STATUS_BUSY);
  EXPECT_EQ(code, status::busy);
  quenra::report(code).store(0);
  EXPECT_FALSE(code);
  quenra::outcome outcome;
  quenra::report(outcome).store(kWarning);
  EXPECT_TRUE(outcome.warned());
  EXPECT_FALSE(outcome.failed());
  EXPECT_EQ(outcome.code().value(), kWarning);
  quenra::report(outcome).store(QUENRA_STATUS_BUSY);
  EXPECT_TRUE(outcome.failed());
  EXPECT_EQ(outcome.code(), status::busy);
}

TEST(CppStatus, Error_NamesOperationCodeMeaningAndAdvice) {
  const quenra::error error(status::busy, "cannot read x", R"({"line":5})");
  EXPECT_STREQ(error.what(), "cannot read x (-52031 QUENRA_STATUS_BUSY): The device is busy.");
  EXPECT_STREQ(error.constant(), "QUENRA_STATUS_BUSY");
  EXPECT_STREQ(error.advice(), "Wait a moment and try again.");
  EXPECT_STREQ(error.description(), R"({"line":5})");
  EXPECT_EQ(error.code(), status::busy);
}

TEST(CppStatus, ErrorOfAnotherCategory_HasNoAdvice) {
  const quenra::error error(std::make_error_code(std::errc::is_a_directory), "cannot read x");
  EXPECT_THAT(error.what(), testing::StartsWith("cannot read x: "));
  EXPECT_STREQ(error.constant(), "");
  EXPECT_STREQ(error.advice(), "");
  EXPECT_STREQ(error.description(), "");
}

TEST(CppStatus, ErrorWithACodeOfTheDriver_ShowsTheNumber) {
  const quenra::error error(std::error_code(-5, quenra::category()), "cannot read x");
  EXPECT_THAT(error.what(), testing::StartsWith("cannot read x (-5): A failure that the library"));
}

// ---- Values ----

TEST(CppValues, MemoryCapacity_CountsMebibytesOrKibibytes) {
  constexpr quenra::memory_capacity mebibytes(0x2000);
  EXPECT_EQ(mebibytes.bytes(), uint64_t{0x2000} << 20);
  EXPECT_EQ(mebibytes.mebibytes(), 0x2000u);
  EXPECT_TRUE(mebibytes.is_known());
  EXPECT_FALSE(mebibytes.is_lower_bound());
  EXPECT_EQ(quenra::memory_capacity(0x8800).bytes(), uint64_t{0x800} << 10);
  EXPECT_EQ(quenra::memory_capacity(0x8800).mebibytes(), 2u);
  EXPECT_TRUE(quenra::memory_capacity(0x7FFF).is_lower_bound());
  EXPECT_FALSE(quenra::memory_capacity(0xFFFF).is_known());
  EXPECT_EQ(quenra::memory_capacity(0xFFFF).bytes(), 0u);
  EXPECT_NE(mebibytes, quenra::memory_capacity(0x8800));
}

TEST(CppValues, Quantities_CompareByCount) {
  EXPECT_LT(quenra::megahertz(1), quenra::megahertz(2));
  EXPECT_GE(quenra::megahertz(2), quenra::megahertz(2));
  EXPECT_EQ(quenra::megatransfers(5).count(), 5u);
  EXPECT_STREQ(quenra::megahertz::unit(), "MHz");
  EXPECT_STREQ(quenra::megatransfers::unit(), "MT/s");
}

TEST(CppValues, Versions_CompareByTheirPartsInOrder) {
  // In ascending order.
  const char* const kTexts[] = {"no version", "0.0.0d0",  "0.0.0f0",  "0.0.0f16383",    "0.0.1d0",
                                "0.1.0d0",    "1.0.0d9",  "1.0.0a9",  "1.0.0b9",        "1.0.0f7",
                                "1.0.0f10",   "1.15.0f0", "2.0.15f1", "255.15.15f16383"};
  for (size_t i = 1; i < std::size(kTexts); ++i) {
    EXPECT_LT(quenra::version::parse(kTexts[i - 1]), quenra::version::parse(kTexts[i]))
        << kTexts[i];
  }
  EXPECT_EQ(quenra::version::parse("1.2.3f4"), quenra::version::parse("1.2.3f4, a build"));
}

TEST(CppValues, TextThatIsNoVersion_IsRejected) {
  for (const char* const text :
       {"", "1", "1.", "1.2", "1.2.3", "1.2.3f", "1.2.3x4", "256.0.0f0", "0.16.0f0", "0.0.16f0",
        "0.0.0f16384", "01.0.0f0", "1.00.0f0", "1.2.3f01", " 1.2.3f4", "1-2.3f4",
        "99999999999.0.0f0", "-1.0.0f0"}) {
    EXPECT_FALSE(quenra::version::parse(text)) << text;
  }
}

TEST(CppValues, AttributeInstancePastTheLargest_ThrowsOutOfRange) {
  EXPECT_THROW(static_cast<void>(quenra::memory_size.at(256)), std::out_of_range);
}

TEST(CppValues, Attributes_AreThoseOfTheCHeaders) {
  std::set<std::pair<uint32_t, std::string>> expected;
#define ADD_ROW(id, name) expected.emplace(id, name);
  QUENRA_FOR_EACH_TEXT_ATTRIBUTE(ADD_ROW)
  QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(ADD_ROW)
#undef ADD_ROW
  expected.emplace(QUENRA_TEXT_SETTING_OF_BOTH, "text-setting-of-both");
  std::set<std::pair<uint32_t, std::string>> present;
  quenra::for_each_attribute([&](std::string_view name, const auto& attribute) {
    EXPECT_TRUE(present.emplace(attribute.id(), name).second) << name;
  });
  EXPECT_EQ(present, expected);
}

// ---- The controller ----

class CppController : public ContractTest {
 protected:
  size_t opens() { return count(kSimulatorEventOpen, kSimulatorInterfaceController); }
  size_t closes() { return count(kSimulatorEventClose, kSimulatorInterfaceController); }
  // Lets the driver carry out later requests with a warning.
  void warnAbout(uint32_t requestCode, tSimulatorInterface interfaceKind) {
    tSimulatorScript script{};
    script.interfaceKind = interfaceKind;
    script.requestCode = requestCode;
    script.action = kSimulatorActionAddCode;
    script.driverStatus = kWarning;
    machine().addScript(script);
  }
};

TEST_F(CppController, Constructed_IsOpenUntilTheEndOfItsScope) {
  {
    const quenra::controller controller;
    EXPECT_TRUE(controller.is_open());
    EXPECT_EQ(controller.native_handle(), QUENRA_HANDLE);
    EXPECT_EQ(opens(), 1u);
    EXPECT_EQ(closes(), 0u);
  }
  EXPECT_EQ(closes(), 1u);
}

TEST_F(CppController, MovedFrom_ClosesOnce) {
  {
    quenra::controller first;
    quenra::controller second(std::move(first));
    EXPECT_FALSE(first.is_open());  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(second.get(quenra::product_name), "BW-8135");
    quenra::controller third;
    third = std::move(second);
    EXPECT_FALSE(second.is_open());  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(third.is_open());
    EXPECT_EQ(closes(), 0u);
  }
  EXPECT_EQ(closes(), 1u);
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(CppController, Closed_ClosesOnceAndRejectsCalls) {
  quenra::controller controller;
  const quenra::controller other;
  controller.close();
  controller.close();
  EXPECT_FALSE(controller.is_open());
  EXPECT_EQ(closes(), 0u) << "the other one is open";
  EXPECT_EQ(other.get(quenra::slot_count), 4u);
  EXPECT_EQ(errorOf([&] { controller.self_test(); })->code(), status::invalid_handle);
  EXPECT_EQ(errorOf([&] { static_cast<void>(controller.get(quenra::product_name)); })->code(),
            status::invalid_handle);
  EXPECT_EQ(errorOf([&] { static_cast<void>(controller.get(quenra::slot_count)); })->code(),
            status::invalid_handle);
}

TEST_F(CppController, Swapped_ExchangesItsOpens) {
  quenra::controller open;
  std::error_code code;
  quenra::controller closed;
  closed.close();
  swap(open, closed);
  EXPECT_FALSE(open.is_open());
  closed.self_test(code);
  EXPECT_FALSE(code);
}

TEST_F(CppController, NoControllerPresent_FailsInEveryForm) {
  usePresence(0, 1);
  const auto error = errorOf([] { const quenra::controller controller; });
  EXPECT_EQ(error->code(), status::no_controller);
  EXPECT_EQ(error->code(), std::errc::no_such_device);
  EXPECT_THAT(error->what(), HasSubstr("cannot open the controller (-26932 QUENRA_STATUS_NO_"
                                       "CONTROLLER): No controller could be reached"));
  EXPECT_EQ(errorOf([] { static_cast<void>(quenra::controller::open()); })->code(),
            status::no_controller);
  std::error_code code;
  EXPECT_FALSE(quenra::controller::open(code).is_open());
  EXPECT_EQ(code, status::no_controller);
  quenra::outcome outcome;
  EXPECT_FALSE(quenra::controller(outcome).is_open());
  EXPECT_EQ(outcome.code(), status::no_controller);
}

TEST_F(CppController, OpenedWithACode_ClearsTheCode) {
  std::error_code code = someError();
  const quenra::controller controller = quenra::controller::open(code);
  EXPECT_FALSE(code);
  EXPECT_TRUE(controller.is_open());
}

TEST_F(CppController, WarningOfTheDriver_IsSeenByAnOutcomeOnly) {
  warnAbout(0, kSimulatorInterfaceController);
  quenra::outcome outcome;
  const quenra::controller controller(outcome);
  EXPECT_TRUE(controller.is_open());
  EXPECT_TRUE(outcome.warned());
  EXPECT_EQ(outcome.value(), kWarning);
  std::error_code code = someError();
  controller.self_test(code);
  EXPECT_FALSE(code);
  EXPECT_NO_THROW(quenra::controller());
}

TEST_F(CppController, SelfTest_SucceedsInEveryForm) {
  const quenra::controller controller;
  EXPECT_NO_THROW(controller.self_test());
  std::error_code code = someError();
  controller.self_test(code);
  EXPECT_FALSE(code);
  EXPECT_THAT(errorOf([] {
                quenra::controller closed;
                closed.close();
                closed.self_test();
              })->what(),
              HasSubstr("the self-test failed (-26931 QUENRA_STATUS_INVALID_HANDLE)"));
}

// ---- Attributes ----

// The text that the C function returns.
struct tReadInC {
  int32_t code;
  std::string text;
};
tReadInC readTextInC(uint32_t id) {
  char buffer[512] = "";
  uint64_t size = sizeof buffer;
  const int32_t code = QUENRA_getAttributeUTF8(QUENRA_HANDLE, id, buffer, &size);
  return {code, code < 0 ? "" : buffer};
}

// Compares a read in C++ with the same read in C.
template <class Value, quenra::access Access>
void expectSameRead(const quenra::controller& controller, std::string_view name,
                    quenra::attribute<Value, Access> attribute) {
  if constexpr (quenra::attribute<Value, Access>::is_readable) {
    quenra::outcome outcome(1);
    const Value value = controller.get(attribute, outcome);
    if constexpr (std::is_same_v<Value, std::string>) {
      const tReadInC expected = readTextInC(attribute.id());
      EXPECT_EQ(outcome.value(), expected.code) << name;
      EXPECT_EQ(value, expected.text) << name;
    } else {
      const tUnsignedRead expected = readUnsigned(attribute.id());
      EXPECT_EQ(outcome.value(), expected.code) << name;
      EXPECT_TRUE(value == quenra::detail::value_of<Value>(expected.code < 0 ? 0 : expected.value))
          << name;
    }
  }
}
template <class Value, quenra::access Access>
void expectSameRead(const quenra::controller& controller, std::string_view name,
                    const quenra::attribute_array<Value, Access>& attributes) {
  for (size_t instance = 0; instance < 6; ++instance) {
    expectSameRead(controller, name, attributes[instance]);
  }
}

TEST_F(CppController, EveryAttributeAndInstance_ReadsAsInC) {
  const quenra::controller controller;
  quenra::for_each_attribute([&](std::string_view name, const auto& attribute) {
    expectSameRead(controller, name, attribute);
  });
}

TEST_F(CppController, Attributes_HaveTypedValues) {
  const quenra::controller controller;
  EXPECT_EQ(controller.get(quenra::product_name), "BW-8135");
  EXPECT_EQ(controller.get(quenra::memory_size[1]), quenra::memory_capacity(0x2002));
  EXPECT_EQ(controller.get(quenra::memory_speed[1]), quenra::megatransfers(2402));
  EXPECT_EQ(controller.get(quenra::memory_type[0]), quenra::memory_technology::ddr4);
  EXPECT_EQ(controller.get(quenra::processor_maximum_speed.at(1)), quenra::megahertz(4201));
  EXPECT_EQ(controller.get(quenra::link_kind), quenra::link_type::gpib);
  EXPECT_EQ(controller.get(quenra::expansion_kind), quenra::expansion_type::pci);
  EXPECT_TRUE(controller.get(quenra::text_setting_support)) << "its number is 3";
  EXPECT_TRUE(controller.get(quenra::firmware_update_support));
  EXPECT_EQ(controller.get(quenra::platform_code), 0xABCDu);
  const quenra::interface_set interfaces = controller.get(quenra::interfaces_present);
  EXPECT_TRUE(interfaces.contains(quenra::marten));
  EXPECT_TRUE(interfaces.contains(quenra::selector::controller));
  EXPECT_FALSE(interfaces.contains(quenra::selector::automatic));
}

TEST_F(CppController, AttributeOfAnInterface_IsReadFromThere) {
  machine().setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "M-9");
  const quenra::controller controller;
  EXPECT_EQ(controller.get(quenra::firmware_version), "M-9");
  EXPECT_EQ(controller.get(quenra::firmware_version.on(quenra::selector::controller)), "B-1.23");
}

TEST_F(CppController, UnsupportedAttribute_FailsInEveryForm) {
  const quenra::controller controller;
  const auto text = errorOf(
      [&] { static_cast<void>(controller.get(quenra::memory_locator[2].on(quenra::marten))); });
  EXPECT_EQ(text->code(), status::not_supported);
  EXPECT_THAT(
      text->what(),
      HasSubstr("cannot read memory-locator[2] of the Marten interface (-26934 QUENRA_STATUS_"
                "NOT_SUPPORTED): The attribute or operation is not supported"));
  const auto number = errorOf([&] { static_cast<void>(controller.get(quenra::memory_speed[2])); });
  EXPECT_EQ(number->code(), std::errc::not_supported);
  EXPECT_THAT(number->what(), HasSubstr("cannot read memory-speed[2] (-26934"));
  std::error_code code;
  EXPECT_EQ(controller.get(quenra::memory_locator[2], code), "");
  EXPECT_EQ(code, status::not_supported);
  code.clear();
  EXPECT_EQ(controller.get(quenra::memory_speed[2], code).count(), 0u);
  EXPECT_EQ(code, status::not_supported);
  EXPECT_EQ(controller.get(quenra::slot_count, code), 4u);
  EXPECT_FALSE(code);
}

TEST_F(CppController, FailureThatStoresANumber_ReadsAsZero) {
  const quenra::controller controller;
  quenra::outcome outcome;
  // The library stores the count.
  constexpr quenra::attribute<std::uint32_t> kSecondCount(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT + 1);
  EXPECT_EQ(controller.get(kSecondCount, outcome), 0u);
  EXPECT_EQ(outcome.code(), status::not_supported);
}

TEST_F(CppController, UnlistedAttribute_IsNamedByItsNumber) {
  const quenra::controller controller;
  constexpr quenra::attribute<std::uint32_t> kUnknown(0x20050000);
  EXPECT_THAT(errorOf([&] { static_cast<void>(controller.get(kUnknown)); })->what(),
              HasSubstr("cannot read attribute 537198592 (-26934"));
}

TEST_F(CppController, TextLongerThanTheFirstBuffer_IsReadCompletely) {
  const std::vector<uint8_t> longest(SIMULATOR_VALUE_CAPACITY, 'x');
  machine().setAttribute(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, longest);
  const quenra::controller controller;
  EXPECT_EQ(controller.get(quenra::firmware_version), std::string(SIMULATOR_VALUE_CAPACITY, 'x'));
}

TEST_F(CppController, MalformedTextOfTheTable_ReadsAsEmpty) {
  tReferenceTable table;
  table.structure(0x97).byte(0x04, 9);  // a string that the structure does not have
  useTable(table);
  const quenra::controller controller;
  std::error_code code;
  const std::string text = controller.get(quenra::bus_location, code);
  const tReadInC expected = readTextInC(QUENRA_ATTRIBUTE_BUS_LOCATION);
  EXPECT_EQ(code.value(), expected.code < 0 ? expected.code : 0);
  EXPECT_EQ(text, "");
}

TEST_F(CppController, ReadWithAWarning_ReturnsTheValue) {
  machine().setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "M-9");
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
  const quenra::controller controller;
  warnAbout(REQUEST_GET_ATTRIBUTE, kSimulatorInterfaceMarten);
  warnAbout(REQUEST_GET_ATTRIBUTE, kSimulatorInterfaceController);
  quenra::outcome outcome;
  EXPECT_EQ(controller.get(quenra::firmware_version, outcome), "M-9");
  EXPECT_TRUE(outcome.warned());
  EXPECT_EQ(controller.get(quenra::driver_setting_1, outcome), 5u);
  EXPECT_TRUE(outcome.warned());
  EXPECT_EQ(controller.get(quenra::driver_setting_1), 5u) << "not thrown";
}

TEST_F(CppController, Writes_ReachTheDriver) {
  constexpr quenra::attribute<std::string, quenra::access::read_write> kMarker(
      QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN);
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
  machine().allowWrites(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1);
  machine().setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "M");
  machine().allowWrites(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION);
  tReferenceTable table;
  table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06).byte(0x04, 1);
  useTable(table);
  quenra::controller controller;
  controller.set(quenra::driver_setting_1, 6);
  EXPECT_EQ(controller.get(quenra::driver_setting_1), 6u);
  std::error_code code = someError();
  controller.set(quenra::driver_setting_1, 7, code);
  EXPECT_FALSE(code);
  EXPECT_EQ(controller.get(quenra::driver_setting_1), 7u);
  // A view is not followed by a NUL.
  controller.set(kMarker, std::string_view("a text").substr(2, 3));
  EXPECT_EQ(controller.get(kMarker), "tex");
  code = someError();
  controller.set(kMarker, std::string(255, 'x'), code);
  EXPECT_FALSE(code);
  EXPECT_EQ(controller.get(kMarker), std::string(255, 'x'));
}

TEST_F(CppController, RefusedWrite_FailsInEveryForm) {
  machine().refuseWrites(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_2);
  quenra::controller controller;
  const auto error = errorOf([&] { controller.set(quenra::driver_setting_2, 6); });
  EXPECT_EQ(error->code(), status::not_supported);
  EXPECT_THAT(error->what(), HasSubstr("cannot write driver-setting-2 (-26934"));
  std::error_code code;
  controller.set(quenra::driver_setting_2, 6, code);
  EXPECT_EQ(code, status::not_supported);
}

TEST_F(CppController, TextThatCannotBeSent_IsRejectedBeforeAnyRequest) {
  quenra::controller controller;
  machine().clearLog();
  for (const std::string& text : {std::string(256, 'x'), std::string("a\0b", 3)}) {
    EXPECT_EQ(errorOf([&] { controller.set(quenra::text_setting_of_both, text); })->code(),
              status::invalid_value);
    std::error_code code;
    controller.set(quenra::text_setting_of_both, text, code);
    EXPECT_EQ(code, std::errc::invalid_argument);
  }
  EXPECT_THAT(requests(REQUEST_SET_ATTRIBUTE), IsEmpty());
}

TEST_F(CppController, DevicePath_IsFoundWithoutAnOpenController) {
  const std::string expected = readTextInC(QUENRA_ATTRIBUTE_DEVICE_PATH).text;
  EXPECT_FALSE(expected.empty());
  EXPECT_EQ(quenra::find_device_path(), expected);
  std::error_code code = someError();
  EXPECT_EQ(quenra::find_device_path(code), expected);
  EXPECT_FALSE(code);
  usePresence(1, 1, 0);
  EXPECT_EQ(quenra::find_device_path(code), "");
  EXPECT_EQ(code, status::no_controller);
  EXPECT_THAT(errorOf([] { static_cast<void>(quenra::find_device_path()); })->what(),
              HasSubstr("cannot find the device of the controller (-26932"));
}

TEST_F(CppController, UsedByManyThreads_ReadsTheSameEverywhere) {
  const quenra::controller controller;
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int repeat = 0; repeat < 25; ++repeat) {
        quenra::controller own;
        good += controller.get(quenra::product_name) == own.get(quenra::product_name) ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(good, 100);
}

// ---- Firmware ----

class CppFirmware : public CppController {
 protected:
  void SetUp() override {
    CppController::SetUp();
    resetUpdateWorld();
    machine().clearFirmware();
    useTemporaryDirectory(temporary_.path());
    tReferenceTable table;
    table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 1).byte(5, 0);
    table.structure(0x00) = tSmbiosStructure(0x00, 0x18).text(5, "1.2.3f4");
    useTable(table);
  }
  void TearDown() override {
    useTemporaryDirectory(temporary_.path().parent_path());
    resetUpdateWorld();
    CppController::TearDown();
  }
  static std::string image(const std::string& version = "9.0.0f1") {
    return firmwareImage({tFirmwareSection("BIOS").version(version)});
  }
  // The number of payloads that the controller has received since the last call.
  size_t takePayloads() {
    const size_t count = machine().firmware().size();
    machine().clearFirmware();
    return count;
  }
  std::filesystem::path file(const std::string& content) {
    const std::filesystem::path path = temporary_.path() / "image.fwi";
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  [[nodiscard]] const std::filesystem::path& folder() const { return temporary_.path(); }

 private:
  const tTemporaryFolder temporary_;
};

TEST_F(CppFirmware, ImageInAnyContainer_IsApplied) {
  quenra::controller controller;
  const std::string text = image();
  const auto* const bytes = reinterpret_cast<const std::byte*>(text.data());
  controller.update_firmware(quenra::image_view(text.data(), text.size()),
                             quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
  controller.update_firmware(std::vector<std::byte>(bytes, bytes + text.size()),
                             quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
  controller.update_firmware(std::vector<char>(text.begin(), text.end()),
                             quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
#ifdef __cpp_lib_span
  controller.update_firmware(std::span(bytes, text.size()), quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
  const std::span<const std::byte> view = quenra::image_view(bytes, text.size());
  EXPECT_EQ(view.data(), bytes);
  EXPECT_EQ(view.size(), text.size());
#endif
  std::error_code code = someError();
  controller.update_firmware(quenra::image_view(text.data(), text.size()),
                             quenra::update_options::all, code);
  EXPECT_FALSE(code);
  EXPECT_EQ(takePayloads(), 1u);
}

TEST_F(CppFirmware, OptionNewer_SkipsAnOlderImage) {
  quenra::controller controller;
  const std::string older = image("1.0.0f1");
  controller.update_firmware(quenra::image_view(older.data(), older.size()),
                             quenra::update_options::newer);
  EXPECT_EQ(takePayloads(), 0u);
  EXPECT_LT(quenra::version::parse("1.0.0f1"),
            quenra::version::parse(
                controller.get(quenra::firmware_version.on(quenra::selector::controller))));
}

TEST_F(CppFirmware, ImageInAFile_IsApplied) {
  quenra::controller controller;
  const std::filesystem::path path = file(image());
  controller.update_firmware(path, quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
  controller.update_firmware(path.string(), quenra::update_options::all);
  EXPECT_EQ(takePayloads(), 1u);
  std::error_code code = someError();
  controller.update_firmware(path, quenra::update_options::all, code);
  EXPECT_FALSE(code);
  EXPECT_EQ(takePayloads(), 1u);
}

TEST_F(CppFirmware, FileThatCannotBeRead_FailsWithTheErrorOfTheSystem) {
  quenra::controller controller;
  const std::filesystem::path missing = folder() / "missing.fwi";
  const auto error =
      errorOf([&] { controller.update_firmware(missing, quenra::update_options::all); });
  EXPECT_EQ(error->code(), std::errc::no_such_file_or_directory);
  EXPECT_THAT(error->what(), HasSubstr("cannot read '"));
  EXPECT_THAT(error->what(), HasSubstr("missing.fwi'"));
  std::error_code code;
  controller.update_firmware(missing, quenra::update_options::all, code);
  EXPECT_EQ(code, std::errc::no_such_file_or_directory);
  EXPECT_THAT(quenra::read_image(folder(), code), IsEmpty());
  EXPECT_TRUE(code) << "a folder";
  EXPECT_THROW(static_cast<void>(quenra::read_image(folder())), quenra::error);
  EXPECT_EQ(takePayloads(), 0u);
}

TEST_F(CppFirmware, FileOfAnySize_IsReadCompletely) {
  std::error_code code = someError();
  EXPECT_THAT(quenra::read_image(file(""), code), IsEmpty());
  EXPECT_FALSE(code);
  const std::string content("\r\n\0\x1A\xFF", 5);
  const std::vector<std::byte> bytes = quenra::read_image(file(content));
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()), content);
}

TEST_F(CppFirmware, ImageThatIsMalformed_FailsInEveryForm) {
  quenra::controller controller;
  const std::string text = "neither header nor payload";
  const quenra::image_view image(text.data(), text.size());
  const auto inC =
      QUENRA_updateFirmware2(QUENRA_HANDLE, text.data(), text.size(), QUENRA_UPDATE_ALL);
  std::error_code code;
  controller.update_firmware(image, static_cast<quenra::update_options>(2), code);
  EXPECT_EQ(code, status::invalid_value);
  const auto error =
      errorOf([&] { controller.update_firmware(image, static_cast<quenra::update_options>(2)); });
  EXPECT_THAT(error->what(), HasSubstr("cannot update the firmware (-26935"));
  quenra::outcome outcome;
  controller.update_firmware(image, quenra::update_options::all, outcome);
  EXPECT_EQ(outcome.value(), inC);
}

TEST_F(CppFirmware, EncryptedDrive_FailsWithDriveProtected) {
  quenra::controller controller;
  encryptDrive();
  std::error_code code;
  controller.update_firmware(quenra::image_view(), quenra::update_options::all, code);
  EXPECT_EQ(code, status::drive_protected);
}

TEST_F(CppFirmware, UpdateWithAWarning_IsSeenByAnOutcomeOnly) {
  quenra::controller controller;
  const std::string text = image();
  const quenra::image_view view(text.data(), text.size());
  warnAbout(REQUEST_CONTROLLER_SEND_COMMAND, kSimulatorInterfaceController);
  quenra::outcome outcome;
  controller.update_firmware(view, quenra::update_options::all, outcome);
  EXPECT_TRUE(outcome.warned());
  std::error_code code = someError();
  controller.update_firmware(view, quenra::update_options::all, code);
  EXPECT_FALSE(code);
  EXPECT_NO_THROW(controller.update_firmware(view, quenra::update_options::all));
}

// ---- Routes ----

class CppRouting : public CppController {
 protected:
  std::vector<uint32_t> states() {
    std::vector<uint32_t> result;
    for (const tSimulatorRoute& held : machine().routes()) {
      result.push_back(held.state);
    }
    return result;
  }
  // The requests to the router, oldest first.
  std::vector<uint32_t> takeRequests() {
    std::vector<uint32_t> codes;
    for (const tSimulatorLogEntry& entry : machine().log()) {
      if (entry.event == kSimulatorEventRequest && entry.interfaceKind == kRouter) {
        codes.push_back(entry.requestCode);
      }
    }
    machine().clearLog();
    return codes;
  }
  void demote() {
    tSimulatorNotice notice{};
    notice.mask = ROUTING_NOTIFICATION_DEMOTED;
    machine().notify(notice);
  }
};

TEST_F(CppRouting, Terminals_AreARangeOfTheirAttributes) {
  session session;
  std::vector<std::string> names;
  for (const quenra::routing::terminal& terminal : session.terminals()) {
    names.emplace_back(terminal.name);
    EXPECT_EQ(terminal.id, names.size());
    EXPECT_EQ(terminal.canonical_name.empty(), false);
    EXPECT_EQ(terminal.bus_name, "");
    const bool isLine = terminal.name.substr(0, 8) == "PXI_Trig";
    EXPECT_EQ(terminal.bus_line, isLine ? std::optional<uint32_t>(terminal.id - 4) : std::nullopt);
    EXPECT_EQ(terminal.bus_type, isLine ? "PXI_Trig" : "");
    EXPECT_EQ(terminal.is_external, isLine);
    EXPECT_EQ(terminal.is_owned, !isLine);
    EXPECT_EQ(terminal.is_public, isLine || terminal.name == "TRIG_SMB");
    EXPECT_FALSE(terminal.is_alias);
    EXPECT_FALSE(terminal.is_masked_out);
  }
  EXPECT_THAT(names,
              ElementsAre("FLOAT", "TRIG_SMB", "WD_Terminal", "PXI_Trig0", "PXI_Trig1", "PXI_Trig2",
                          "PXI_Trig3", "PXI_Trig4", "PXI_Trig5", "PXI_Trig6", "PXI_Trig7"));
}

TEST_F(CppRouting, TerminalsWithoutExceptions_AreTheSame) {
  session session;
  std::error_code code = someError();
  auto terminals = session.terminals(code);
  EXPECT_FALSE(code);
  size_t count = 0;
  for (auto at = terminals.begin(); at != terminals.end(); at.increment(code)) {
    EXPECT_FALSE(code);
    EXPECT_EQ(at->id, ++count);
  }
  EXPECT_EQ(count, 11u);
  EXPECT_TRUE(terminals.begin() == terminals.end()) << "a range to walk through once";
}

TEST_F(CppRouting, TerminalsOfAMovedRange_Continue) {
  session session;
  auto first = session.terminals();
  ++first.begin();
  auto second = std::move(first);
  EXPECT_TRUE(first.begin() == first.end());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(second.begin()->name, "TRIG_SMB");
  second = session.terminals();
  EXPECT_EQ(second.begin()->name, "FLOAT");
}

TEST_F(CppRouting, TerminalsOfAClosedSession_Fail) {
  session session;
  auto terminals = session.terminals();
  session.close();
  EXPECT_EQ(errorOf([&] { static_cast<void>(session.terminals()); })->code(),
            status::invalid_parameter);
  std::error_code code;
  EXPECT_TRUE(session.terminals(code).begin() == quenra::routing::terminal_range::sentinel());
  EXPECT_EQ(code, status::invalid_parameter);
  const bool ended = terminals.begin().increment(code) == terminals.end();
  EXPECT_TRUE(ended || !code);
}

TEST_F(CppRouting, HandledConstraints_AreListed) {
  session session;
  EXPECT_THAT(session.handled_constraints(), ElementsAre("inversionNeeded"));
  std::error_code code = someError();
  EXPECT_THAT(session.handled_constraints(code), SizeIs(1));
  EXPECT_FALSE(code);
  session.close();
  EXPECT_THAT(session.handled_constraints(code), IsEmpty());
  EXPECT_EQ(code, status::invalid_parameter);
  EXPECT_THAT(errorOf([&] { static_cast<void>(session.handled_constraints()); })->description(),
              testing::StartsWith("{"));
}

TEST_F(CppRouting, RouteAtEachStep_IsTornDownFromThere) {
  session session;
  const auto tornDownAfter = [&](const std::function<void(route&)>& steps) {
    {
      std::vector<route> routes = session.plan("TRIG_SMB", "PXI_Trig0");
      EXPECT_THAT(routes, SizeIs(1));
      steps(routes.at(0));
      machine().clearLog();
    }
    EXPECT_THAT(states(), IsEmpty());
    return takeRequests();
  };
  EXPECT_THAT(tornDownAfter([](route&) {}), ElementsAre(REQUEST_DESTROY_ROUTE));
  EXPECT_THAT(tornDownAfter([](route& reserved) { reserved.reserve(); }),
              ElementsAre(REQUEST_UNRESERVE_ROUTE, REQUEST_DESTROY_ROUTE));
  EXPECT_THAT(tornDownAfter([](route& programmed) {
                programmed.reserve();
                programmed.program();
              }),
              ElementsAre(REQUEST_UNPROGRAM_ROUTE, REQUEST_UNRESERVE_ROUTE, REQUEST_DESTROY_ROUTE));
}

TEST_F(CppRouting, StepsOfARoute_SucceedInEveryForm) {
  session session;
  std::error_code code = someError();
  std::vector<route> routes =
      session.plan("TRIG_SMB", "PXI_Trig3", quenra::routing::inversion::none, code);
  EXPECT_FALSE(code);
  ASSERT_THAT(routes, SizeIs(1));
  route& route = routes[0];
  EXPECT_TRUE(static_cast<bool>(route));
  EXPECT_EQ(route.ticket(), machine().routes().at(0).ticket);
  EXPECT_EQ(route.destination(), "PXI_Trig3");
  EXPECT_EQ(route.seed(), 0u);
  EXPECT_FALSE(route.is_inverted());
  code = someError();
  route.reserve(code);
  EXPECT_FALSE(code);
  EXPECT_THAT(states(), ElementsAre(kSimulatorRouteReserved));
  code = someError();
  route.program(code);
  EXPECT_FALSE(code);
  EXPECT_THAT(states(), ElementsAre(kSimulatorRouteProgrammed));
  EXPECT_THAT(route.path(), ElementsAre("TRIG_SMB", "PXI_Trig3"));
  code = someError();
  EXPECT_THAT(route.path(code), SizeIs(2));
  EXPECT_FALSE(code);
  route.reset();
  EXPECT_FALSE(static_cast<bool>(route));
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, Connect_LeavesAProgrammedRoute) {
  session session;
  {
    const route held = session.connect("TRIG_SMB", "PXI_Trig0");
    EXPECT_THAT(states(), ElementsAre(kSimulatorRouteProgrammed));
    EXPECT_THAT(held.path(), ElementsAre("TRIG_SMB", "PXI_Trig0"));
  }
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, ConnectWithoutARoute_FailsWithNotFound) {
  session session;
  const auto error = errorOf([&] { static_cast<void>(session.connect("PXI_Trig0", "PXI_Trig0")); });
  EXPECT_EQ(error->code(), status::not_found) << error->what();
  EXPECT_THAT(error->what(), HasSubstr("no route from 'PXI_Trig0' to 'PXI_Trig0'"));
}

TEST_F(CppRouting, RequestWithSeveralSeedsAndDestinations_GivesARouteForEach) {
  session session;
  quenra::routing::request request;
  request.seeds = {{"TRIG_SMB", 9}, {"WD_Terminal", 2}};
  request.destinations = {"PXI_Trig0", "PXI_Trig1"};
  std::vector<route> routes = session.plan(request);
  ASSERT_THAT(routes, SizeIs(2));
  EXPECT_EQ(routes[0].destination(), "PXI_Trig0");
  EXPECT_EQ(routes[1].destination(), "PXI_Trig1");
  EXPECT_EQ(routes[0].seed(), 1u) << "the cheaper one";
  EXPECT_LT(routes[0].cost(), 9u);
  EXPECT_THAT(states(), SizeIs(2));
}

TEST_F(CppRouting, Inversion_IsPartOfTheRequest) {
  session session;
  const auto invertedOf = [](const std::vector<route>& routes) {
    std::multiset<bool> inverted;
    for (const route& route : routes) {
      inverted.insert(route.is_inverted());
    }
    return inverted;
  };
  EXPECT_THAT(invertedOf(session.plan("TRIG_SMB", "PXI_Trig0")), ElementsAre(false));
  EXPECT_THAT(invertedOf(session.plan("TRIG_SMB", "PXI_Trig0", inversion::required)),
              ElementsAre(true));
  EXPECT_THAT(invertedOf(session.plan("TRIG_SMB", "PXI_Trig0", inversion::possible)),
              ElementsAre(false, true));
  quenra::routing::request request;
  request.seeds = {{"TRIG_SMB", 0, true}};
  request.destinations = {"PXI_Trig0"};
  EXPECT_THAT(invertedOf(session.plan(request)), ElementsAre(true));
}

TEST_F(CppRouting, Documents_HaveEveryMemberOfTheRequest) {
  namespace detail = quenra::routing::detail;
  quenra::routing::request request;
  EXPECT_EQ(detail::seeds_document({}), "[]");
  EXPECT_EQ(detail::seeds_document({{"a\"\\\n\x1F", 4294967295, true}, {"b", 0, false}}),
            R"([{"terminal":"a\"\\\u000a\u001f","cost":4294967295,"constraints":)"
            R"({"inversionNeeded":true}},{"terminal":"b","cost":0,"constraints":{}}])");
  EXPECT_EQ(detail::seeds_document({{std::string("\0", 1), 0, false}}),
            R"([{"terminal":"\u0000","cost":0,"constraints":{}}])");
  EXPECT_EQ(detail::destinations_document({"x", "y"}), R"(["x","y"])");
  EXPECT_EQ(detail::modifiers_document(request), R"({"required":{},"optional":{}})");
  request.ignores_reservations = true;
  EXPECT_EQ(detail::modifiers_document(request),
            R"({"required":{"calculateIgnoresReservations":true},"optional":{}})");
  request.invert = inversion::required;
  EXPECT_EQ(detail::modifiers_document(request),
            R"({"required":{"inversionNeeded":true,"calculateIgnoresReservations":true},)"
            R"("optional":{}})");
  request.ignores_reservations = false;
  request.invert = inversion::possible;
  EXPECT_EQ(detail::modifiers_document(request),
            R"({"required":{},"optional":{"inversionNeeded":true}})");
}

TEST_F(CppRouting, UnknownTerminal_FailsInEveryForm) {
  session session;
  const auto error = errorOf([&] { static_cast<void>(session.plan("TRIG_SMB", "nowhere\"")); });
  EXPECT_EQ(error->code(), status::no_such_terminal);
  EXPECT_THAT(error->what(), HasSubstr("cannot calculate the route (-240601 QUENRA_STATUS_NO_SUCH_"
                                       "TERMINAL): The router has no terminal of that name."));
  EXPECT_THAT(error->description(), HasSubstr(R"("component":"quenra")"));
  std::error_code code;
  EXPECT_THAT(session.plan("TRIG_SMB", "nowhere", inversion::none, code), IsEmpty());
  EXPECT_EQ(code, status::no_such_terminal);
  code.clear();
  EXPECT_THAT(session.plan({}, code), IsEmpty());
}

TEST_F(CppRouting, LinesHeldByAnotherRoute_ThrowAConflictWithItsHolders) {
  session holder;
  session session;
  const route held = holder.connect("TRIG_SMB", "PXI_Trig0");
  std::vector<route> routes = session.plan("WD_Terminal", "PXI_Trig0");
  ASSERT_THAT(routes, SizeIs(1));
  const auto error = errorOf<quenra::routing::conflict>([&] { routes[0].reserve(); });
  EXPECT_EQ(error->code(), status::route_conflict);
  EXPECT_EQ(error->code(), std::errc::device_or_resource_busy);
  EXPECT_THAT(error->what(), HasSubstr("cannot reserve the route (-89137"));
  ASSERT_THAT(error->holders(), SizeIs(1));
  EXPECT_EQ(error->holders()[0].ticket, held.ticket());
  EXPECT_EQ(error->holders()[0].session, machine().routes().at(0).session);
  EXPECT_TRUE(static_cast<bool>(routes[0])) << "still planned";

  std::error_code code;
  routes[0].reserve(code);
  EXPECT_EQ(code, status::route_conflict);
  std::vector<quenra::routing::holder> holders(3);
  code.clear();
  routes[0].reserve(holders, code);
  EXPECT_EQ(code, status::route_conflict);
  EXPECT_THAT(holders, SizeIs(1));
  EXPECT_EQ(
      errorOf([&] { static_cast<void>(session.connect("WD_Terminal", "PXI_Trig0")); })->code(),
      status::route_conflict);
  EXPECT_THAT(states(), SizeIs(2)) << "connect() destroys the route that it cannot reserve";
}

TEST_F(CppRouting, StepOutOfOrder_FailsInEveryForm) {
  session session;
  std::vector<route> routes = session.plan("TRIG_SMB", "PXI_Trig0");
  const auto error = errorOf([&] { routes.at(0).program(); });
  EXPECT_EQ(error->code(), status::wrong_order);
  EXPECT_THAT(error->what(), HasSubstr("cannot program the route (-240603"));
  std::error_code code;
  routes.at(0).program(code);
  EXPECT_EQ(code, status::wrong_order);
  machine().clearLog();
  routes.clear();
  EXPECT_THAT(takeRequests(), ElementsAre(REQUEST_DESTROY_ROUTE));
}

TEST_F(CppRouting, FailingReservation_KeepsAnEarlierOne) {
  session session;
  route held = session.connect("TRIG_SMB", "PXI_Trig0");
  std::error_code code;
  held.reserve(code);
  EXPECT_EQ(code, status::wrong_order);
  machine().clearLog();
  held.reset();
  EXPECT_THAT(takeRequests(),
              ElementsAre(REQUEST_UNPROGRAM_ROUTE, REQUEST_UNRESERVE_ROUTE, REQUEST_DESTROY_ROUTE));
}

TEST_F(CppRouting, MovedRoute_IsTornDownOnce) {
  session session;
  {
    route first = session.connect("TRIG_SMB", "PXI_Trig0");
    route second(std::move(first));
    EXPECT_FALSE(static_cast<bool>(first));  // NOLINT(bugprone-use-after-move)
    route third = session.connect("WD_Terminal", "PXI_Trig1");
    machine().clearLog();
    third = std::move(second);
    EXPECT_THAT(takeRequests(), ElementsAre(REQUEST_UNPROGRAM_ROUTE, REQUEST_UNRESERVE_ROUTE,
                                            REQUEST_DESTROY_ROUTE))
        << "the route that was assigned to";
    EXPECT_EQ(third.destination(), "PXI_Trig0");
    EXPECT_THAT(states(), SizeIs(1));
  }
  EXPECT_THAT(takeRequests(), SizeIs(3));
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, ReleasedRoute_StaysWithTheDriverUntilItIsAdopted) {
  session session;
  route held = session.connect("TRIG_SMB", "PXI_Trig0");
  const uint32_t ticket = held.release();
  EXPECT_FALSE(static_cast<bool>(held));
  held.reset();
  EXPECT_THAT(states(), ElementsAre(kSimulatorRouteProgrammed));
  {
    const route adopted = session.adopt(ticket);
    EXPECT_THAT(adopted.path(), SizeIs(2));
  }
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, EmptyRoute_FailsWithInvalidParameter) {
  route empty;
  EXPECT_EQ(errorOf([&] { empty.reserve(); })->code(), status::invalid_parameter);
  EXPECT_EQ(errorOf([&] { empty.program(); })->code(), status::invalid_parameter);
  EXPECT_EQ(errorOf([&] { static_cast<void>(empty.path()); })->code(), status::invalid_parameter);
  std::error_code code;
  EXPECT_THAT(empty.path(code), IsEmpty());
  EXPECT_EQ(code, status::invalid_parameter);
  empty.reset();
}

TEST_F(CppRouting, RouteThatOutlivesItsSession_DoesNothing) {
  route held;
  {
    session session;
    held = session.connect("TRIG_SMB", "PXI_Trig0");
  }
  EXPECT_THAT(states(), IsEmpty()) << "the driver releases them when the device is closed";
  std::error_code code;
  held.program(code);
  EXPECT_EQ(code, status::invalid_parameter);
}

TEST_F(CppRouting, StepWithAWarning_IsSeenByAnOutcomeOnly) {
  session session;
  warnAbout(REQUEST_RESERVE_ROUTE, kRouter);
  warnAbout(REQUEST_PROGRAM_ROUTE, kRouter);
  std::vector<route> routes = session.plan("TRIG_SMB", "PXI_Trig0");
  quenra::outcome outcome;
  routes.at(0).reserve(outcome);
  EXPECT_EQ(outcome.value(), kWarning);
  EXPECT_NO_THROW(routes.at(0).program());
  EXPECT_THAT(states(), ElementsAre(kSimulatorRouteProgrammed));
  routes.clear();
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, ResetOfATerminal_IsSentInItsMode) {
  session session;
  machine().clearLog();
  session.reset("PXI_Trig2", reset_mode::floating);
  std::error_code code = someError();
  session.reset("PXI_Trig2", reset_mode::standard, code);
  EXPECT_FALSE(code);
  const auto resets = requests(REQUEST_RESET_TERMINAL);
  ASSERT_THAT(resets, SizeIs(2));
  EXPECT_NE(std::memcmp(resets[0].input, resets[1].input, resets[0].inputSize), 0);
  uint32_t terminal = 0;
  std::memcpy(&terminal, resets[0].input, sizeof terminal);
  EXPECT_EQ(terminal, 6u);
  const uint32_t source = session.reset_source("PXI_Trig2", reset_mode::standard);
  code = someError();
  EXPECT_EQ(session.reset_source("PXI_Trig2", reset_mode::standard, code), source);
  EXPECT_FALSE(code);
  EXPECT_THAT(requests(REQUEST_CALCULATE_RESET_TERMINAL), SizeIs(2));
}

TEST_F(CppRouting, ResetOfAnUnknownTerminal_FailsWithNoSuchTerminal) {
  session session;
  EXPECT_EQ(errorOf([&] { session.reset("PXI_Trig8", reset_mode::standard); })->code(),
            status::no_such_terminal);
  std::error_code code;
  session.reset("", reset_mode::standard, code);
  EXPECT_EQ(code, status::no_such_terminal);
  EXPECT_EQ(errorOf([&] {
              static_cast<void>(session.reset_source("PXI_Trig8", reset_mode::standard));
            })->code(),
            status::no_such_terminal);
  session.close();
  session.reset("PXI_Trig0", reset_mode::standard, code);
  EXPECT_EQ(code, status::invalid_parameter);
}

TEST_F(CppRouting, LongPath_IsReadInFull) {
  session session;
  const route held = session.connect("TRIG_SMB", "PXI_Trig0");
  machine().setPathLength(1000);
  EXPECT_THAT(held.path(), SizeIs(1000));
}

// The program of examples/. It waits for Enter and finds the end of its input.
TEST_F(CppRouting, Example_PrintsTheMachineAndConnects) {
  machine().setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "M-9");
  std::istringstream input;
  std::ostringstream output;
  std::streambuf* const keyboard = std::cin.rdbuf(input.rdbuf());
  std::streambuf* const screen = std::cout.rdbuf(output.rdbuf());
  std::array<std::string, 3> words{"controller", "TRIG_SMB", "PXI_Trig0"};
  std::array<char*, 3> arguments{words[0].data(), words[1].data(), words[2].data()};
  const int result = controllerExample(3, arguments.data());
  std::cout.rdbuf(screen);
  std::cin.rdbuf(keyboard);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(output.str(),
            "BW-8135\nDIMM 0: 8192 MiB, 2400 MT/s\nDIMM 2: 8194 MiB, 2402 MT/s\n"
            "Marten firmware: M-9\nTRIG_SMB\nPXI_Trig0\npress Enter to disconnect\n");
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(CppRouting, ExampleWithoutAController_PrintsErrorAndAdvice) {
  usePresence(0, 0);
  std::ostringstream output;
  std::streambuf* const screen = std::cerr.rdbuf(output.rdbuf());
  std::string word = "controller";
  char* argument = word.data();
  const int result = controllerExample(1, &argument);
  std::cerr.rdbuf(screen);
  EXPECT_EQ(result, 1);
  EXPECT_THAT(output.str(), HasSubstr("cannot open the controller (-26932 QUENRA_STATUS_NO_"));
  EXPECT_THAT(output.str(), HasSubstr("Check in the system's device manager"));
}

// ---- Sessions ----

TEST_F(CppRouting, SessionOnADevice_IsOpenInEveryForm) {
  const std::string device = quenra::find_device_path();
  EXPECT_TRUE(session(device).is_open());
  std::error_code code = someError();
  EXPECT_TRUE(session(device, {}, code).is_open());
  EXPECT_FALSE(code);
  code = someError();
  EXPECT_TRUE(session(code).is_open());
  EXPECT_FALSE(code);
  quenra::outcome outcome;
  EXPECT_TRUE(session([](demotion) {}, outcome).is_open());
  EXPECT_NE(session().native_handle(), nullptr);
}

TEST_F(CppRouting, SessionThatCannotBeOpened_FailsInEveryForm) {
  const auto error = errorOf([] { session(R"(\\?\nothing)"); });
  EXPECT_EQ(error->code(), status::not_found);
  EXPECT_THAT(error->what(), HasSubstr("cannot open a routing session (-52006"));
  EXPECT_THAT(error->description(), HasSubstr(R"("component":"quenra")"));
  std::error_code code;
  EXPECT_FALSE(session(R"(\\?\nothing)", [](demotion) {}, code).is_open());
  EXPECT_EQ(code, status::not_found);
  usePresence(1, 1, 0);
  EXPECT_EQ(errorOf([] { session(); })->code(), status::no_controller);
  EXPECT_FALSE(session(code).is_open());
  EXPECT_EQ(code, status::no_controller);
}

TEST_F(CppRouting, DeviceNameThatNoDeviceHas_IsRejectedWithoutACall) {
  for (const std::string& name : {std::string(257, 'x'), std::string("a\0b", 3)}) {
    EXPECT_EQ(errorOf([&] { session{name}; })->code(), status::path_too_long);
    std::error_code code;
    EXPECT_FALSE(session(name, {}, code).is_open());
    EXPECT_EQ(code, status::path_too_long);
  }
  std::error_code code;
  EXPECT_FALSE(session(std::string(256, 'x'), {}, code).is_open());
  EXPECT_NE(code, status::path_too_long);
}

TEST_F(CppRouting, ClosedSession_RejectsCalls) {
  session first;
  session second(std::move(first));
  EXPECT_FALSE(first.is_open());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(errorOf([&] { static_cast<void>(first.plan("a", "b")); })->code(),
            status::invalid_parameter);
  second.close();
  second.close();
  EXPECT_FALSE(second.is_open());
  EXPECT_FALSE(static_cast<bool>(second.adopt(1)));
}

TEST_F(CppRouting, Demotion_CallsTheHandlerWithTheReason) {
  std::atomic<int> reason = 0;
  session session([&](demotion why) { reason = static_cast<int>(why); });
  route held = session.connect("TRIG_SMB", "PXI_Trig0");
  machine().demoteRoute(held.ticket());
  EXPECT_TRUE(becomesTrue([&] { return reason != 0; }));
  EXPECT_EQ(reason, static_cast<int>(demotion::higher_priority));
  held.reserve();
  held.program();
  EXPECT_THAT(states(), ElementsAre(kSimulatorRouteProgrammed)) << "reserved again";
}

TEST_F(CppRouting, HandlerOfAMovedSession_IsStillCalled) {
  std::atomic<int> first = 0;
  std::atomic<int> second = 0;
  session original([&](demotion) { ++first; });
  session moved(std::move(original));
  demote();
  EXPECT_TRUE(becomesTrue([&] { return first == 1; }));
  session other([&](demotion) { ++second; });
  moved = std::move(other);
  demote();
  EXPECT_TRUE(becomesTrue([&] { return second == 1; }));
  EXPECT_EQ(first, 1) << "its session was assigned to";
}

TEST_F(CppRouting, HandlerThatThrows_IsCalledAgain) {
  std::atomic<int> calls = 0;
  const session session([&](demotion) {
    ++calls;
    throw std::runtime_error("of the handler");
  });
  for (int round = 1; round <= 2; ++round) {
    demote();
    EXPECT_TRUE(becomesTrue([&] { return calls == round; }));
  }
}

TEST_F(CppRouting, DestroyedSession_WaitsForItsHandlerAndDestroysIt) {
  const auto state = std::make_shared<std::atomic<int>>(0);  // 1: in the handler, 2: it may end
  auto owner = std::make_unique<session>([state](demotion) {
    *state = 1;
    EXPECT_TRUE(becomesTrue([&] { return *state == 2; }));
  });
  demote();
  ASSERT_TRUE(becomesTrue([&] { return *state == 1; }));
  std::atomic<bool> isDestroyed = false;
  std::thread destroyer([&] {
    owner.reset();
    isDestroyed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(isDestroyed);
  *state = 2;
  destroyer.join();
  EXPECT_EQ(state.use_count(), 1) << "the handler is destroyed";
}

TEST_F(CppRouting, SessionDestroyedInItsOwnHandler_StaysOpenWithoutCalls) {
  std::atomic<int> calls = 0;
  std::optional<session> owner;
#ifdef TESTS_CAN_FIND_LEAKS
  __lsan_disable();  // the handler lives until the process ends
#endif
  const auto token = std::make_shared<int>(0);
  owner.emplace([&calls, &owner, token](demotion) {
    owner.reset();
    ++calls;
  });
#ifdef TESTS_CAN_FIND_LEAKS
  __lsan_enable();
#endif
  zoroco_RoutingAdaptorSession* const handle = owner->native_handle();
  std::atomic<int> callsOfAnother = 0;
  const session another([&](demotion) { ++callsOfAnother; });
  for (int round = 1; round <= 2; ++round) {
    demote();
    EXPECT_TRUE(becomesTrue([&] { return callsOfAnother == round && calls >= 1; }));
  }
  zoroco_ra_quenra_destroySession(handle);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(token.use_count(), 2) << "the handler was in use";
}

TEST_F(CppRouting, SessionDestroyedInTheHandlerOfAnother_IsClosed) {
  auto victim = std::make_unique<session>([](demotion) {});
  std::atomic<bool> isClosed = false;
  const session session([&](demotion) {
    victim.reset();
    isClosed = true;
  });
  demote();
  EXPECT_TRUE(becomesTrue([&] { return isClosed.load(); }));
}

// ---- Answers ----

TEST(CppAnswers, Texts_AreReadWithTheirEscapes) {
  const auto read = [](std::string_view text) {
    std::vector<std::string> texts;
    EXPECT_TRUE(quenra::routing::detail::read_texts(text, texts)) << text;
    return texts;
  };
  EXPECT_THAT(read("[]"), IsEmpty());
  EXPECT_THAT(read(" [ \"a\" ,\r\n\t\"\" ] "), ElementsAre("a", ""));
  EXPECT_THAT(read(R"(["\"\\\/\b\f\n\r\t"])"), ElementsAre("\"\\/\b\f\n\r\t"));
  EXPECT_THAT(read(R"(["\u0041\u00e9\u20AC\ud83d\ude00"])"),
              ElementsAre("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_THAT(read(R"(["\u0000x"])"), ElementsAre(std::string("\0x", 2)));
}

TEST(CppAnswers, MalformedTexts_AreRejected) {
  for (const std::string_view text : {"",
                                      "[",
                                      "]",
                                      "[\"a\"",
                                      "[\"a\",]",
                                      "[\"a\" \"b\"]",
                                      "[a]",
                                      "[1]",
                                      "[\"a]",
                                      "[\"\\\"]",
                                      "[\"\\x\"]",
                                      "[\"\\u12\"]",
                                      "[\"\\u12G4\"]",
                                      "[\"\\ud800\"]",
                                      "[\"\\ud800x\"]",
                                      "[\"\\ud800\\u0041\"]",
                                      "[\"\\udc00\"]",
                                      "[\"a\x01\"]",
                                      "[\"a\"]x",
                                      "{}",
                                      "null"}) {
    std::vector<std::string> texts;
    EXPECT_FALSE(quenra::routing::detail::read_texts(text, texts)) << text;
  }
}

TEST(CppAnswers, Routes_AreReadWithUnknownMembers) {
  namespace detail = quenra::routing::detail;
  std::vector<detail::route_facts> routes;
  const auto visit = [&](detail::route_facts facts) { routes.push_back(std::move(facts)); };
  EXPECT_TRUE(detail::visit_routes(
      R"([{"new":[1,-2.5e+3,{"a":null,"b":[]},"x",true,false],"ticket":4294967295,"destination":"d",)"
      R"("cost":0,"indexOfStartingSeed":3,"constraints":{"other":{},"inversionNeeded":true}},)"
      R"({"ticket":8}])",
      visit));
  ASSERT_THAT(routes, SizeIs(2));
  EXPECT_EQ(routes[0].ticket, 4294967295u);
  EXPECT_EQ(routes[0].destination, "d");
  EXPECT_EQ(routes[0].seed, 3u);
  EXPECT_TRUE(routes[0].is_inverted);
  EXPECT_EQ(routes[1].ticket, 8u);
}

TEST(CppAnswers, MalformedRoutes_AreRejected) {
  namespace detail = quenra::routing::detail;
  const std::string tooDeep = "[{\"x\":" + std::string(100, '[') + std::string(100, ']') + "}]";
  for (const std::string_view text : std::initializer_list<std::string_view>{
           "[{}]",
           "[{\"ticket\":}]",
           "[{\"ticket\":4294967296}]",
           "[{\"ticket\":-1}]",
           "[{\"ticket\":01}]",
           "[{\"ticket\":1.5}]",
           "[{\"ticket\":1e2}]",
           "[{\"ticket\":\"1\"}]",
           "[{\"ticket\":18446744073709551616}]",
           "[{\"ticket\":1,}]",
           "[{\"ticket\" 1}]",
           "[{ticket:1}]",
           "[{\"ticket\":1,\"constraints\":[]}]",
           "[{\"ticket\":1,\"constraints\":{\"inversionNeeded\":1}}]",
           "[{\"ticket\":1,\"destination\":1}]",
           "[{\"ticket\":1,\"x\":tru}]",
           "[{\"ticket\":1,\"x\":}]",
           "[{\"ticket\":1}",
           "[[]]",
           tooDeep}) {
    EXPECT_FALSE(detail::visit_routes(text, [](const detail::route_facts&) {})) << text;
  }
}

TEST(CppAnswers, Holders_AreReadAsTheLibraryWritesThem) {
  namespace detail = quenra::routing::detail;
  std::vector<quenra::routing::holder> holders;
  EXPECT_TRUE(detail::read_holders(R"([{"sessionId":18446744073709551615,"ticket":7}])", holders));
  ASSERT_THAT(holders, SizeIs(1));
  EXPECT_EQ(holders[0].session, ~uint64_t{0});
  EXPECT_EQ(holders[0].ticket, 7u);
  EXPECT_FALSE(detail::read_holders(R"([{"sessionId":18446744073709551616}])", holders));
}

// ---- Allocations ----

#if defined(_WIN32) || defined(TESTS_COUNT_ALLOCATIONS)

// The allocations of a call on this thread. Natively those of the library too, which is part of the
// program.
template <class Call>
unsigned allocationsOf(Call call) {
#ifdef _WIN32
  const unsigned before = allocationsOfThread;
  call();
  return allocationsOfThread - before;
#else
  const nFakeWindows::tAllocationPlan plan(0);
  call();
  return plan.count();
#endif
}

TEST_F(CppController, CallsWithoutTexts_AllocateNothingOfTheirOwn) {
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
  machine().allowWrites(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1);
  quenra::controller controller;
  std::error_code code;
  uint32_t value = 0;
  const std::pair<std::function<void()>, std::function<void()>> kCallsInCppAndC[] = {
      {[&] { static_cast<void>(controller.get(quenra::slot_count)); },
       [&] { static_cast<void>(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20025800, &value)); }},
      {[&] { static_cast<void>(controller.get(quenra::memory_speed[9], code)); },
       [&] { static_cast<void>(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x2000C909, &value)); }},
      {[&] { static_cast<void>(controller.get(quenra::memory_locator[9], code)); },
       [&] { static_cast<void>(readTextInC(0x1000CF09)); }},
      {[&] { controller.set(quenra::driver_setting_1, 5); },
       [&] { static_cast<void>(QUENRA_setAttributeU32(QUENRA_HANDLE, 0x20044C00, 5)); }},
      {[&] { controller.set(quenra::text_setting_of_both, "text", code); },
       [&] { static_cast<void>(QUENRA_setAttributeUTF8(QUENRA_HANDLE, 0x18000000, "text")); }},
      {[&] { controller.self_test(); },
       [&] { static_cast<void>(QUENRA_performSelfTest(QUENRA_HANDLE)); }},
      {[&] { quenra::controller(code).close(); },
       [&] {
         uint64_t handle = 0;
         if (QUENRA_openController(&handle) >= 0) {
           QUENRA_closeController(handle);
         }
       }},
  };
  for (const auto& [inCpp, inC] : kCallsInCppAndC) {
    EXPECT_EQ(allocationsOf(inCpp), allocationsOf(inC))
        << &inCpp - &kCallsInCppAndC[0].first << " bytes into the table";
  }
}

TEST_F(CppController, TextOfATable_IsTheOnlyAllocationOfItsRead) {
  tReferenceTable table;
  table.structure(0x96).text(0x09, std::string(100, 'x'));
  useTable(table);
  const quenra::controller controller;
  EXPECT_EQ(allocationsOf([&] { static_cast<void>(controller.get(quenra::platform_text_1)); }), 1u);
  EXPECT_EQ(allocationsOf([&] { static_cast<void>(controller.get(quenra::bus_location)); }), 0u)
      << "fits in the string";
}

TEST_F(CppRouting, StepsOfARoute_AllocateNothingOfTheirOwn) {
  session session;
  std::vector<route> routes = session.plan("TRIG_SMB", "PXI_Trig0");
  zoroco_RoutingAdaptorSession* const handle = session.native_handle();
  zoerr_Status status{};
  char* output = nullptr;
  std::error_code code;
  const auto reserving = allocationsOf([&] { routes.at(0).reserve(code); });
  const auto programming = allocationsOf([&] { routes.at(0).program(code); });
  EXPECT_EQ(allocationsOf([&] { routes.at(0).reset(); }), 0u);
  routes = session.plan("TRIG_SMB", "PXI_Trig0");
  const uint32_t ticket = routes.at(0).ticket();
  EXPECT_EQ(reserving, allocationsOf([&] {
              zoroco_ra_quenra_reserveRoute(handle, ticket, &output, &status);
            }));
  EXPECT_EQ(programming,
            allocationsOf([&] { zoroco_ra_quenra_programRoute(handle, ticket, &status); }));
  EXPECT_FALSE(code);
  EXPECT_EQ(status.code, 0);
}

#endif

#ifdef TESTS_COUNT_ALLOCATIONS

TEST_F(CppRouting, PlanningWithFailingAllocations_LeavesNoRoute) {
  session session;
  unsigned failures = 0;
  for (unsigned nth = 1;; ++nth) {
    std::vector<route> routes;
    try {
      const nFakeWindows::tAllocationPlan plan(nth);
      routes = session.plan("TRIG_SMB", "PXI_Trig0", inversion::possible);
    } catch (const std::bad_alloc&) {
      EXPECT_THAT(states(), IsEmpty()) << nth;
      ++failures;
    } catch (const quenra::error& error) {
      EXPECT_EQ(error.code(), std::errc::not_enough_memory) << nth;
      // The library documents that the driver keeps routes whose answer finds no memory.
      for (const tSimulatorRoute& held : machine().routes()) {
        static_cast<void>(session.adopt(held.ticket));
      }
    }
    if (!routes.empty()) {
      EXPECT_THAT(routes, SizeIs(2));
      break;
    }
    ASSERT_LT(nth, 200u);
  }
  EXPECT_GT(failures, 3u) << "of the header";
}

#endif

}  // namespace
}  // namespace nTests
