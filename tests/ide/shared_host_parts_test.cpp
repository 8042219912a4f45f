// The host-independent parts both IDE hosts build on: the edges a host's own tests reach
// only by accident (a notifier removing another mid-broadcast, a throwing notifier, a
// writer that copies past its place).
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "ide/addin_notifier_list.h"
#include "ide/edit_writer_base.h"
#include "ide/project_units.h"

namespace velmora {
namespace {

class TRecordingNotifier : public TIAddInNotifier {
 public:
  explicit TRecordingNotifier(std::vector<std::string>& log, std::string name)
      : log_(log), name_(std::move(name)) {}
  void FileNotification(TFileNotification, const std::string& fileName, bool&) override {
    log_.push_back(name_ + ":" + fileName);
    if (removeOnCall) list->Remove(removeOnCall);
    if (throwOnCall) throw std::runtime_error(name_ + " failed");
  }
  void EventNotification(TEventNotification, bool&) override {}

  TAddInNotifierList* list = nullptr;
  TIAddInNotifier* removeOnCall = nullptr;
  bool throwOnCall = false;

 private:
  std::vector<std::string>& log_;
  std::string name_;
};

TEST(AddInNotifierList, SkipsOneRemovedBeforeItsTurnAndReportsOneThatThrows) {
  std::vector<std::string> log, reports;
  TAddInNotifierList list;
  // Owned here, as an add-in owns its notifiers; never released through the list.
  TRecordingNotifier a(log, "a"), b(log, "b"), c(log, "c");
  a.list = &list;
  a.removeOnCall = &b;
  c.throwOnCall = true;
  EXPECT_TRUE(list.Add(&a));
  EXPECT_TRUE(list.Add(&b));
  EXPECT_TRUE(list.Add(&c));
  EXPECT_FALSE(list.Add(&a)) << "registered twice";
  EXPECT_FALSE(list.Add(nullptr));
  list.Broadcast(TFileNotification::FileOpened, "u.cpp",
                 [&](const std::string& m) { reports.push_back(m); });
  EXPECT_EQ(log, (std::vector<std::string>{"a:u.cpp", "c:u.cpp"}));
  EXPECT_EQ(reports, std::vector<std::string>{"c failed"});
  EXPECT_FALSE(list.Remove(&b)) << "already removed by a";
}

TEST(ProjectUnits, KeepsOrderRefusesDuplicatesAndStopsWhenAsked) {
  TProjectUnits project;
  EXPECT_FALSE(project.Add("a.cpp")) << "no project open";
  EXPECT_FALSE(project.Enum([](const std::string&, const std::string&) { return true; }));
  project.Open("/p/App.bpr");
  EXPECT_TRUE(project.Add("/p/b.cpp"));
  EXPECT_TRUE(project.Add("/p/a.pas"));
  EXPECT_FALSE(project.Add("/p/b.cpp"));
  const struct {
    const char* Name;
    int StopAfter;
    std::vector<std::string> Seen;
  } cases[] = {
      {.Name = "all", .StopAfter = 99, .Seen = {"App", "b", "a"}},
      {.Name = "project file only", .StopAfter = 1, .Seen = {"App"}},
      {.Name = "first unit", .StopAfter = 2, .Seen = {"App", "b"}},
  };
  for (const auto& c : cases) {
    std::vector<std::string> seen;
    EXPECT_TRUE(project.Enum([&](const std::string&, const std::string& unit) {
      seen.push_back(unit);
      return static_cast<int>(seen.size()) < c.StopAfter;
    })) << c.Name;
    EXPECT_EQ(seen, c.Seen) << c.Name;
  }
  EXPECT_TRUE(project.Remove("/p/b.cpp"));
  EXPECT_FALSE(project.Remove("/p/b.cpp"));
  project.Close();
  EXPECT_TRUE(project.Units().empty());
  EXPECT_EQ(project.FileName(), "");
}

class TStringWriter : public TEditWriterBase {
 public:
  explicit TStringWriter(std::string text) : text_(std::move(text)) {}
  std::string Result() { return Changed() ? TakeResult() : text_; }

 protected:
  const std::string& Original() const override { return text_; }

 private:
  std::string text_;
};

TEST(EditWriterBase, BuildsTheNewTextAndRefusesGoingBackOrPastTheEnd) {
  TStringWriter* w = new TStringWriter("abcdef");
  EXPECT_TRUE(w->CopyTo(2));
  EXPECT_TRUE(w->Insert("XY"));
  EXPECT_TRUE(w->DeleteTo(4));
  EXPECT_FALSE(w->CopyTo(3)) << "behind the current place";
  EXPECT_FALSE(w->DeleteTo(7)) << "past the end";
  EXPECT_EQ(w->Position(), 4);
  EXPECT_EQ(w->Result(), "abXYef");
  w->Release();
}

}  // namespace
}  // namespace velmora
