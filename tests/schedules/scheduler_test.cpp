#include "tests/fakewindows/scheduler.h"

#include <windows.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/fakewindows/fakewindowstest.h"
#include "tests/schedules/exploration.h"

namespace nTests {
namespace {

using nFakeWindows::scheduler;
using nFakeWindows::tPlainSchedule;

// Two threads that write a letter at each of their points.
class SchedulerTest : public nFakeWindows::FakeWindowsTest {
 protected:
  std::string lettersOf(nFakeWindows::iSchedule& schedule, unsigned points) {
    std::string letters;
    scheduler().run(schedule, [&letters, points] {
      const auto write = [&letters, points](char letter) {
        return [&letters, letter, points] {
          for (unsigned i = 0; i < points; ++i) {
            scheduler().point("write");
            letters += letter;
          }
        };
      };
      const unsigned a = scheduler().start("a", write('a'));
      const unsigned b = scheduler().start("b", write('b'));
      scheduler().join(a);
      scheduler().join(b);
    });
    return letters;
  }

  // The results of all schedules within a bound, one for each.
  std::vector<std::string> allLetters(unsigned preemptions, unsigned points) {
    std::vector<std::string> all;
    tExhaustiveSchedules schedules({preemptions, 0});
    do {
      all.push_back(lettersOf(schedules, points));
    } while (schedules.next());
    return all;
  }
};

TEST_F(SchedulerTest, PlainSchedule_RunsEachThreadUntilItIsBlocked) {
  tPlainSchedule schedule;
  EXPECT_EQ(lettersOf(schedule, 3), "aaabbb");
}

TEST_F(SchedulerTest, WithoutPreemption_OnlyTheOrderOfTheThreadsDiffers) {
  const std::vector<std::string> all = allLetters(0, 3);
  EXPECT_EQ(std::set(all.begin(), all.end()), (std::set<std::string>{"aaabbb", "bbbaaa"}));
}

TEST_F(SchedulerTest, WithOnePreemption_AThreadIsInterruptedAtEachPlace) {
  const std::vector<std::string> all = allLetters(1, 2);
  EXPECT_EQ(std::set(all.begin(), all.end()),
            (std::set<std::string>{"aabb", "bbaa", "abba", "baab"}));
}

TEST_F(SchedulerTest, WithEnoughPreemptions_EveryInterleavingOccurs) {
  const std::vector<std::string> all = allLetters(20, 3);
  constexpr size_t kInterleavings = 20;  // 6 over 3
  EXPECT_EQ(std::set(all.begin(), all.end()).size(), kInterleavings);
}

TEST_F(SchedulerTest, ExhaustiveSchedules_DoNotRepeatThemselves) {
  std::set<std::string> texts;
  size_t runs = 0;
  tExhaustiveSchedules schedules({3, 0});
  do {
    static_cast<void>(lettersOf(schedules, 2));
    texts.insert(textOf(deviationsOfTheRun()));
    ++runs;
  } while (schedules.next());
  EXPECT_EQ(texts.size(), runs);
}

TEST_F(SchedulerTest, RandomSchedules_ReachEveryInterleaving) {
  std::set<std::string> reached;
  tRandomSchedules schedules(1, 3);
  for (int i = 0; i < 2000; ++i) {
    reached.insert(lettersOf(schedules, 2));
    schedules.next();
  }
  EXPECT_EQ(reached.size(), 6u);
}

TEST_F(SchedulerTest, WrittenSchedule_RepeatsTheRun) {
  tRandomSchedules random(7, 3);
  for (int i = 0; i < 20; ++i) {
    const std::string letters = lettersOf(random, 4);
    const tDeviations deviations = deviationsOfTheRun();
    tWrittenSchedule written(deviationsOf(textOf(deviations)));
    EXPECT_EQ(lettersOf(written, 4), letters);
    EXPECT_TRUE(written.unused().empty());
    random.next();
  }
}

TEST_F(SchedulerTest, WrittenScheduleOfAnotherProgram_HasDeviationsWithoutAPlace) {
  const tDeviations deviations = deviationsOf("a.write.1>b a.write.9>b a.CloseHandle.1!");
  tWrittenSchedule schedule(deviations);
  EXPECT_EQ(lettersOf(schedule, 2), "bbaa");
  EXPECT_EQ(textOf(schedule.unused()), "a.write.9>b a.CloseHandle.1!");
}

TEST_F(SchedulerTest, TextThatIsNoSchedule_IsRefused) {
  for (const char* text : {"a", "a.b", "a.write.x>b", "a.write.1", "write.1>b"}) {
    EXPECT_THROW(static_cast<void>(deviationsOf(text)), std::invalid_argument) << text;
  }
}

TEST_F(SchedulerTest, Sleep_TakesVirtualTimeOnly) {
  static constexpr DWORD kHour = 3'600'000;
  std::string order;
  tPlainSchedule schedule;
  scheduler().run(schedule, [&order] {
    const unsigned late = scheduler().start("late", [&order] {
      Sleep(2 * kHour);
      order += "late ";
    });
    Sleep(kHour);
    order += "early ";
    EXPECT_EQ(GetTickCount64(), kHour);
    scheduler().join(late);
    EXPECT_EQ(GetTickCount64(), 2 * kHour);
  });
  EXPECT_EQ(order, "early late ");
}

TEST_F(SchedulerTest, Settle_ReturnsWhenNoOtherThreadCanContinue) {
  bool isDone = false;
  tPlainSchedule schedule;
  scheduler().run(schedule, [&isDone] {
    const unsigned other = scheduler().start("other", [&isDone] {
      scheduler().point("write");
      isDone = true;
      Sleep(1);
    });
    scheduler().settle();
    EXPECT_TRUE(isDone);
    EXPECT_EQ(GetTickCount64(), 0u) << "the other thread still sleeps";
    scheduler().join(other);
  });
}

TEST_F(SchedulerTest, Event_OccursOnceItsConditionIsTrue) {
  bool mayOccur = false;
  int occurred = 0;
  tPlainSchedule schedule;
  scheduler().run(schedule, [&] {
    scheduler().postEvent(
        "event", &occurred, [&mayOccur] { return mayOccur; }, [&occurred] { ++occurred; });
    scheduler().settle();
    EXPECT_EQ(occurred, 0);
    mayOccur = true;
    scheduler().settle();
    EXPECT_EQ(occurred, 1);
    scheduler().settle();
    EXPECT_EQ(occurred, 1);
  });
}

TEST_F(SchedulerTest, WithdrawnEvent_DoesNotOccur) {
  int occurred = 0;
  tPlainSchedule schedule;
  scheduler().run(schedule, [&] {
    scheduler().postEvent("event", &occurred, nullptr, [&occurred] { ++occurred; });
    scheduler().withdrawEvents(&occurred);
    scheduler().settle();
  });
  EXPECT_EQ(occurred, 0);
}

TEST_F(SchedulerTest, FailingCall_IsAChoiceOfTheSchedule) {
  unsigned failures = 0;
  unsigned runs = 0;
  tExhaustiveSchedules schedules({0, 1});
  do {
    scheduler().run(schedules, [&failures] {
      for (int i = 0; i < 3; ++i) {
        const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        if (event == nullptr) {
          ++failures;
          EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
        } else {
          CloseHandle(event);
        }
      }
    });
    ++runs;
  } while (schedules.next());
  EXPECT_EQ(runs, 4u);
  EXPECT_EQ(failures, 3u);
}

// ---- Mistakes that the fake Windows finds ----

using SchedulerDeathTest = SchedulerTest;

TEST_F(SchedulerDeathTest, ThreadsThatWaitForEachOther_AreADeadlock) {
  EXPECT_DEATH(
      {
        tPlainSchedule schedule;
        scheduler().run(schedule, [] {
          SRWLOCK first = SRWLOCK_INIT;
          SRWLOCK second = SRWLOCK_INIT;
          AcquireSRWLockExclusive(&first);
          scheduler().start("other", [&] {
            AcquireSRWLockExclusive(&second);
            AcquireSRWLockExclusive(&first);
          });
          scheduler().settle();
          AcquireSRWLockExclusive(&second);
        });
      },
      "no thread can continue\n"
      "  main waits in AcquireSRWLockExclusive lock 1\n"
      "  other waits in AcquireSRWLockExclusive lock 2\n");
}

TEST_F(SchedulerDeathTest, CriticalSectionLeftByAnotherThread_EndsTheProgram) {
  CRITICAL_SECTION section;
  ASSERT_TRUE(InitializeCriticalSectionEx(&section, 0, 0));
  EXPECT_DEATH(LeaveCriticalSection(&section), "belongs to another thread or to none");
  EnterCriticalSection(&section);
  EXPECT_DEATH(DeleteCriticalSection(&section), "a thread is in the critical section");
  LeaveCriticalSection(&section);
  DeleteCriticalSection(&section);
}

TEST_F(SchedulerDeathTest, SlimLockMisused_EndsTheProgram) {
  SRWLOCK lock = SRWLOCK_INIT;
  EXPECT_DEATH(ReleaseSRWLockExclusive(&lock), "another thread holds the lock, or none");
  EXPECT_DEATH(ReleaseSRWLockShared(&lock), "no thread holds the lock");
  AcquireSRWLockExclusive(&lock);
  EXPECT_DEATH(AcquireSRWLockExclusive(&lock), "the thread holds the lock already");
  EXPECT_DEATH(AcquireSRWLockShared(&lock), "the thread holds the lock already");
  ReleaseSRWLockExclusive(&lock);
}

}  // namespace
}  // namespace nTests
