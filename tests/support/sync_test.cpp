#include "support/sync.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "support/thread.h"

namespace velmora {
namespace {

using namespace std::chrono_literals;

// Names of our own, so the test never meets the parse semaphore of the code under test.
std::string TestName(const char* what) {
  return std::string("VelmoraTest.") + what + "." + std::to_string(::getpid());
}

bool InSystemNamespace(const std::string& name) {
  return std::filesystem::exists("/dev/shm/sem." + name);
}

TEST(SyncTest, NamesCarryTheProcessId) {
  const std::string pid = std::to_string(::getpid());
  EXPECT_EQ(ParseSemaphoreName(), "Velmora.ParseSemaphore." + pid);
  EXPECT_EQ(ManagerThreadMutexName(), "Velmora.ManagerThreadMutex." + pid);
  EXPECT_EQ(IdleThreadMutexName(), "Velmora.IdleThreadMutex." + pid);
}

TEST(SyncTest, SemaphoreStartsEmptyAndHoldsAtMostOne) {
  TSemaphore s(TestName("cap"));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(s.WaitFor(30), TWaitResult::Timeout);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 25ms);
  EXPECT_TRUE(s.Release());
  EXPECT_FALSE(s.Release()) << "a second release stays below the maximum of 1";
  EXPECT_EQ(s.WaitFor(0), TWaitResult::Signaled);
  EXPECT_EQ(s.WaitFor(0), TWaitResult::Timeout);
}

TEST(SyncTest, SecondObjectOfANameOpensTheSameSemaphore) {
  const std::string name = TestName("shared");
  TSemaphore first(name);
  first.Release();
  {
    TSemaphore second(name);  // opens: the count is not reset to 0
    EXPECT_EQ(second.Name(), name);
    EXPECT_FALSE(second.Release());
    EXPECT_EQ(second.WaitFor(0), TWaitResult::Signaled);
    second.Release();
  }
  EXPECT_EQ(first.WaitFor(0), TWaitResult::Signaled) << "released through the other object";
}

TEST(SyncTest, NothingIsLeftInTheSystemNamespace) {
  const std::string name = TestName("unlinked");
  {
    TSemaphore s(name);
    s.Release();
    EXPECT_FALSE(InSystemNamespace(name)) << "the name is removed as soon as it is created";
  }
  TSemaphore again(name);  // the last holder closed it: a new one, count 0
  EXPECT_EQ(again.WaitFor(0), TWaitResult::Timeout);
}

TEST(SyncTest, UnusableNamesRaiseTheCreationError) {
  for (const std::string& name : {std::string("with/slash"), std::string(300, 'x')}) {
    try {
      TSemaphore s(name);
      ADD_FAILURE() << "no error for " << name;
    } catch (const ESemaphoreError& e) {
      EXPECT_STREQ(e.what(), "Cannot create semaphore.") << name;
    }
  }
}

TEST(SyncTest, MutexAdmitsOneHolder) {
  TMutex m(TestName("mutex"));
  EXPECT_TRUE(m.Acquire(0));
  EXPECT_FALSE(m.Acquire(0));
  m.Release();
  m.Release();  // a stray release does not let two holders in
  EXPECT_TRUE(m.Acquire(0));
  EXPECT_FALSE(m.Acquire(0));
  m.Release();
}

TEST(SyncThreadsTest, ReleaseWakesAWaiterOnAnotherThread) {
  const std::string name = TestName("wake");
  TSemaphore waiterSide(name);
  std::atomic<bool> woke{false};
  std::thread waiter([&] {
    TSemaphore s(name);
    woke = s.WaitFor() == TWaitResult::Signaled;
  });
  std::this_thread::sleep_for(20ms);
  TSemaphore(name).Release();
  waiter.join();
  EXPECT_TRUE(woke);
}

class TCountingThread : public TThread {
 public:
  explicit TCountingThread(std::atomic<int>& runs, bool fail) : runs_(runs), fail_(fail) {}
  ~TCountingThread() override { ++runs_; }

 protected:
  void Execute() override {
    ++runs_;
    if (fail_) throw std::runtime_error("ends the thread, not the process");
  }

 private:
  std::atomic<int>& runs_;
  bool fail_;
};

TEST(SyncThreadsTest, SelfFreeingThreadSignalsItsEndAfterItIsGone) {
  for (bool fail : {false, true}) {
    std::atomic<int> count{0};
    auto* thread = new TCountingThread(count, fail);
    thread->FreeOnTerminate = true;
    const auto end = thread->EndSignal();
    thread->Resume();
    end->Wait();
    EXPECT_EQ(count, 2) << "Execute ran and the object was freed; fail=" << fail;
  }
}

}  // namespace
}  // namespace velmora
