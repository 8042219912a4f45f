// Finding the IDE's own objects by class name and by component name, and references
// that release what they hold.
#include <gtest/gtest.h>

#include "ide/component.h"
#include "ide/interface.h"

namespace velmora {
namespace {

TEST(ComponentTest, FindsTheFirstMatchDepthFirstWithoutRegardToCase) {
  TComponent app("TApplication", "Application");
  TComponent* splash = app.Add("TSplashForm", "Splash");
  TComponent* editor = app.Add("TEditWindow", "EditWindow_0");
  TComponent* inner = editor->Add("TTabControl", "ViewBar");
  TComponent* second = app.Add("TEditWindow", "EditWindow_1");
  second->Add("TTabControl", "ViewBar2");
  const struct {
    const char* name;
    const char* className;
    TIComponent* expected;
  } cases[] = {
      {.name = "first form", .className = "TSplashForm", .expected = splash},
      {.name = "first of two, other case", .className = "teditwindow", .expected = editor},
      {.name = "owned by a form, before the next form",
       .className = "TTabControl",
       .expected = inner},
      {.name = "none", .className = "TMessageView", .expected = nullptr},
      {.name = "the root itself is not searched", .className = "TApplication", .expected = nullptr},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FindComponentByClassName(app, c.className), c.expected) << c.name;
  EXPECT_EQ(FindComponentByName(app, "viewbar2"), second->Component(0));
}

TEST(ComponentTest, CreatedComponentsBelongToTheirOwner) {
  TComponent app("TApplication", "Application");
  TIComponent* manager = app.CreateComponent("TIDEManager", "IDEManager");
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(manager->Owner(), &app);
  EXPECT_EQ(FindComponentByClassName(app, "tidemanager"), manager);
  EXPECT_TRUE(app.DestroyComponent(manager));
  EXPECT_FALSE(app.DestroyComponent(manager));
  EXPECT_EQ(app.ComponentCount(), 0);
}

class TCounted : public TInterface {
 public:
  explicit TCounted(int& alive) : alive_(alive) { ++alive_; }
  ~TCounted() override { --alive_; }

 private:
  int& alive_;
};

TEST(InterfaceTest, TheLastReferenceFreesTheObject) {
  int alive = 0;
  {
    TIRef<TCounted> first(new TCounted(alive));
    TIRef<TCounted> second = first;
    first.Reset();
    EXPECT_EQ(alive, 1);
    TIRef<TCounted> moved = std::move(second);
    EXPECT_FALSE(second);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace velmora
