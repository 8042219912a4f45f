// The idle measurement turn by turn, on a clock the test moves: a period of half a second
// gives the time per turn; slower than the fastest seen by more than a tenth is busy.
#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "addin/idle_thread.h"

namespace velmora {
namespace {

struct TClockFixture {
  uint32_t now = 1000;
  TIdleThread idle{{.TickCount = [this] { return now; }, .Sleep = [](int) {}}};

  /// Runs one whole period of turns `msPerTurn` apart: the step that opens it, then
  /// steps until the first one at least 500 ms after the opening, which closes it.
  void Period(uint32_t msPerTurn) {
    idle.Step();
    const uint32_t turns = (TIdleThread::kPeriodMs + msPerTurn - 1) / msPerTurn;
    for (uint32_t i = 0; i < turns; ++i) {
      now += msPerTurn;
      idle.Step();
    }
  }
};

TEST(IdleThread, StatesFollowTheTimePerTurnAgainstTheFastestPeriod) {
  TClockFixture f;
  EXPECT_EQ(f.idle.BusyState(), TIdleThread::bsUnknown);
  EXPECT_EQ(f.idle.TimePerTurn(), -1.0);
  struct TCase {
    const char* name;
    uint32_t msPerTurn;
    TIdleThread::TBusyState state;
    double min;
  };
  const TCase cases[] = {
      {.name = "first period sets the range",
       .msPerTurn = 20,
       .state = TIdleThread::bsIdle,
       .min = 20.0},
      {.name = "within a tenth", .msPerTurn = 21, .state = TIdleThread::bsIdle, .min = 20.0},
      {.name = "sleeps take longer", .msPerTurn = 30, .state = TIdleThread::bsBusy, .min = 20.0},
      {.name = "back to normal", .msPerTurn = 20, .state = TIdleThread::bsIdle, .min = 20.0},
  };
  for (const TCase& c : cases) {
    f.Period(c.msPerTurn);
    EXPECT_EQ(f.idle.BusyState(), c.state) << c.name;
    EXPECT_DOUBLE_EQ(f.idle.TimePerTurn(), c.msPerTurn) << c.name;
    EXPECT_DOUBLE_EQ(f.idle.MinTimePerTurn(), c.min) << c.name;
  }
  EXPECT_DOUBLE_EQ(f.idle.MaxTimePerTurn(), 30.0);
}

TEST(IdleThread, ALongIdleStretchResetsTheRangeToTheCurrentValue) {
  TClockFixture f;
  f.Period(20);
  f.Period(30);  // busy: the largest is 30; two periods measured
  for (int i = 0; i < 8; ++i) f.Period(21);
  EXPECT_DOUBLE_EQ(f.idle.MaxTimePerTurn(), 30.0) << "nine periods measured before this one";
  f.Period(21);
  EXPECT_DOUBLE_EQ(f.idle.MinTimePerTurn(), 21.0);
  EXPECT_DOUBLE_EQ(f.idle.MaxTimePerTurn(), 21.0);
}

TEST(IdleThread, AStepDoesNothingWhileTheMutexIsHeldElsewhere) {
  TClockFixture f;
  TMutex other(IdleThreadMutexName());
  ASSERT_TRUE(other.Acquire(0));
  for (int i = 0; i < 40; ++i) {
    f.now += 20;
    f.idle.Step();
  }
  other.Release();
  EXPECT_EQ(f.idle.BusyState(), TIdleThread::bsUnknown);
  f.Period(20);
  EXPECT_EQ(f.idle.BusyState(), TIdleThread::bsIdle);
}

TEST(IdleThreadThreads, StartsAndEndsOnItsOwnThread) {
  std::atomic<int> sleeps = 0;
  std::promise<void> thirdTurn;
  TIdleThread idle({.TickCount = {}, .Sleep = [&](int ms) {
                      EXPECT_EQ(ms, TIdleThread::kSleepMs);
                      if (++sleeps == 3) thirdTurn.set_value();
                    }});
  idle.Start();
  thirdTurn.get_future().wait();
  idle.Terminate();
  const int after = sleeps.load();
  EXPECT_GE(after, 3);
  EXPECT_EQ(sleeps.load(), after) << "no turn after Terminate";
}

}  // namespace
}  // namespace velmora
