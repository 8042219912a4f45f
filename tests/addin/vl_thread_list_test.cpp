// The job list's rules on their own: generations, start order, cancel, and which jobs
// reach the job-finished handler. The starter here runs nothing; the test completes
// jobs itself, as the manager does when a job's last parse is back.
#include <gtest/gtest.h>

#include "addin/vl_thread_list.h"

namespace velmora {
namespace {

struct TListFixture {
  TVLThreadList list{[this](TVLManagerThread& job) { finished.push_back(job.FilesToProcess); },
                     [this](TVLManagerThread& job) { started.push_back(&job); }};
  std::vector<TVLManagerThread*> started;
  std::vector<std::vector<std::string>> finished;

  TVLManagerThread* Add(const std::string& file) {
    return list.AddJob(std::make_unique<TVLManagerThread>(
        std::vector<std::string>{file}, TVLJobTarget::Project, false, std::vector<std::string>{}));
  }
};

TEST(VLThreadList, AJobQueuedIntoAnEmptyQueueStartsAtOnceSoJobsOverlap) {
  TListFixture f;
  TVLManagerThread* a = f.Add("a.cpp");
  TVLManagerThread* b = f.Add("b.cpp");
  EXPECT_EQ(f.started, (std::vector<TVLManagerThread*>{a, b}));
  EXPECT_EQ(f.list.Running(), b);
  EXPECT_EQ(f.list.StartedCount(), 2);
  EXPECT_EQ(f.list.QueuedCount(), 0);
  EXPECT_EQ(a->Generation, 0u);
  EXPECT_NE(a->Id, b->Id);
  EXPECT_EQ(f.list.FindStarted(a->Id), a);
  f.list.JobCompleted(*a);
  EXPECT_EQ(f.list.Running(), b) << "completing another job leaves the running one";
  f.list.JobCompleted(*b);
  EXPECT_EQ(f.list.Running(), nullptr);
  EXPECT_EQ(f.finished, (std::vector<std::vector<std::string>>{{"a.cpp"}, {"b.cpp"}}));
  EXPECT_TRUE(f.list.Idle());
}

TEST(VLThreadList, CancelAllStopsTheStartedJobsAndTheirCompletionCallsNoHandler) {
  TListFixture f;
  TVLManagerThread* a = f.Add("a.cpp");
  TVLManagerThread* b = f.Add("b.cpp");
  const std::stop_token stop = a->StopToken();
  f.list.CancelAll();
  EXPECT_EQ(f.list.Generation(), 1u);
  EXPECT_EQ(f.list.Running(), nullptr);
  EXPECT_TRUE(a->Cancelled());
  EXPECT_TRUE(b->Cancelled());
  EXPECT_TRUE(stop.stop_requested()) << "the job's parse requests see the cancel";
  f.list.JobCompleted(*a);
  f.list.JobCompleted(*b);
  EXPECT_TRUE(f.finished.empty());
  EXPECT_TRUE(f.list.Idle());

  TVLManagerThread* c = f.Add("c.cpp");
  EXPECT_EQ(c->Generation, 1u);
  f.list.JobCompleted(*c);
  EXPECT_EQ(f.finished, (std::vector<std::vector<std::string>>{{"c.cpp"}}));
}

}  // namespace
}  // namespace velmora
