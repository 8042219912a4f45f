// The synchronise-with-main-thread queue: work from other threads runs on the main
// thread, in order, and a waiter is never left waiting for a main thread that stopped.
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "ide/main_thread_queue.h"

namespace velmora {
namespace {

TEST(MainThreadQueueThreadsTest, SynchronizeFromAnotherThreadRunsOnTheMainThread) {
  TMainThreadQueue queue;
  const std::thread::id mainId = std::this_thread::get_id();
  std::thread::id ranOn;
  bool returned = false;
  std::thread worker([&] {
    returned = queue.Synchronize([&] { ranOn = std::this_thread::get_id(); });
    queue.Stop();
  });
  queue.RunLoop();
  worker.join();
  EXPECT_TRUE(returned);
  EXPECT_EQ(ranOn, mainId);
}

TEST(MainThreadQueueTest, SynchronizeOnTheMainThreadRunsAtOnce) {
  TMainThreadQueue queue;
  int ran = 0;
  EXPECT_TRUE(queue.Synchronize([&] { ++ran; }));
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(queue.Pending(), 0u);
}

TEST(MainThreadQueueThreadsTest, AnExceptionOfTheWorkReachesTheWaitingThread) {
  TMainThreadQueue queue;
  std::string caught;
  std::thread worker([&] {
    try {
      queue.Synchronize([] { throw std::runtime_error("merge failed"); });
    } catch (const std::runtime_error& e) {
      caught = e.what();
    }
    queue.Stop();
  });
  queue.RunLoop();
  worker.join();
  EXPECT_EQ(caught, "merge failed");
}

TEST(MainThreadQueueThreadsTest, ShutdownReleasesAWaiterWithoutRunningItsWork) {
  TMainThreadQueue queue;
  std::atomic<bool> ran{false};
  std::atomic<int> result{-1};
  std::thread worker([&] { result = queue.Synchronize([&] { ran = true; }) ? 1 : 0; });
  while (queue.Pending() == 0) std::this_thread::yield();
  queue.Shutdown();
  worker.join();
  EXPECT_EQ(result, 0);
  EXPECT_FALSE(ran);
  // Later calls from other threads do nothing.
  std::thread late([&] { result = queue.Synchronize([&] { ran = true; }) ? 1 : 0; });
  late.join();
  EXPECT_EQ(result, 0);
  EXPECT_FALSE(ran);
}

TEST(MainThreadQueueTest, PostedWorkRunsInOrderIncludingWorkItQueues) {
  TMainThreadQueue queue;
  std::vector<int> order;
  queue.Post([&] {
    order.push_back(1);
    queue.Post([&] { order.push_back(3); });
  });
  queue.Post([&] { order.push_back(2); });
  EXPECT_EQ(queue.RunUntilIdle(), 3);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(MainThreadQueueThreadsTest, ManyThreadsEachSeeTheirWorkDone) {
  TMainThreadQueue queue;
  int total = 0;  // touched only on the main thread
  std::atomic<int> finished{0};
  std::vector<std::thread> workers;
  for (int t = 0; t < 4; ++t)
    workers.emplace_back([&] {
      for (int i = 0; i < 50; ++i) queue.Synchronize([&] { ++total; });
      if (++finished == 4) queue.Stop();
    });
  queue.RunLoop();
  for (auto& w : workers) w.join();
  EXPECT_EQ(total, 200);
}

TEST(MainThreadQueueThreadsTest, TheWakeHookHearsOfEveryPost) {
  TMainThreadQueue queue;
  std::atomic<int> wakes{0};
  queue.SetWakeHook([&] { ++wakes; });
  std::thread worker([&] { queue.Post([] {}); });
  worker.join();
  EXPECT_EQ(wakes, 1);
  EXPECT_EQ(queue.RunUntilIdle(), 1);
}

}  // namespace
}  // namespace velmora
