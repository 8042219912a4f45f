// The display form classes over a fake host: representation slots taken and given back,
// docking into a panel, activation, and the list of open views.
#include "views/display_form.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "display_fakes.h"
#include "views/window_placement.h"

namespace velmora::testing {
namespace {

// A dockable view whose window lives in memory; it logs the host calls in order.
class TFakeView : public TDockableDisplayForm {
 public:
  TFakeView(std::string name, TRepresentationManager& manager,
            TCustomDisplayFormList* list = nullptr)
      : TDockableDisplayForm(std::move(name), manager, list) {}

  TScreenRect Bounds() const override { return window.bounds; }
  void SetBounds(const TScreenRect& b) override { window.bounds = b; }
  bool Visible() const override { return shown; }
  TWindowState WindowState() const override { return window.state; }
  void SetWindowState(TWindowState s) override { window.state = s; }
  TScreenRect ScreenArea() const override { return window.screen; }
  void Show() override {
    shown = true;
    log.push_back("show");
  }
  void Hide() override {
    shown = false;
    log.push_back("hide");
  }

  TFakeWindow window;
  bool shown = false;
  bool canFocus = false;
  bool activeControlInside = false;
  bool activeWindow = false;
  std::vector<std::string> log;

 protected:
  void PrepareDock() override { log.push_back("prepare"); }
  void DockFinished() override { log.push_back("finished"); }
  void AttachToPanel(TDockPanel* panel) override {
    log.push_back(panel != nullptr ? "attach" : "detach");
  }
  bool CanFocusControl() const override { return canFocus; }
  void FocusControl() override { log.push_back("focus"); }
  bool ContainsActiveControl() const override { return activeControlInside; }
  bool IsActiveWindow() const override { return activeWindow; }
  void BringToFront() override { log.push_back("to front"); }
};

TEST(DisplayFormTest, SlotTakenOnCreationAndGivenBackOnDestruction) {
  TRepresentationManager manager;
  TRepresentedObject object(manager);
  TRepresentations& table = object.Representations();
  auto first = std::make_unique<TFakeView>("ClassView", manager);
  auto second = std::make_unique<TFakeView>("ContextBar", manager);
  EXPECT_EQ(first->Slot(), 0);
  EXPECT_EQ(second->Slot(), 1);
  EXPECT_EQ(manager.SlotCount(), 2);
  EXPECT_EQ(table.Count(), 2);
  object.Representation(second->Slot())->SetData(42);

  first.reset();
  EXPECT_EQ(manager.SlotCount(), 1);
  EXPECT_EQ(table.Count(), 1);
  // The second view's slot moved down and its datum went with it.
  EXPECT_EQ(second->Slot(), 0);
  EXPECT_EQ(object.Representation(second->Slot())->Data(), 42u);

  second.reset();
  EXPECT_EQ(manager.SlotCount(), 0);
  EXPECT_EQ(table.Count(), 0);
}

TEST(DisplayFormTest, DockMovesTheFormIntoThePanelAndAppliesThePlacement) {
  TRepresentationManager manager;
  TWindowPlacementSettings placement("ClassView", kAllPlacementAttributes);
  placement.StateSaved = true;
  placement.Docked = true;
  placement.Align = TDockAlign::Top;
  placement.DockedSize = 120;
  TFakePanel panel;  // outlives the view, as the editor window's panels do
  TFakeView view("ClassView", manager);
  view.SetPlacement(&placement);
  EXPECT_FALSE(view.IsDocked());

  view.Dock(panel);
  EXPECT_TRUE(view.IsDocked());
  EXPECT_EQ(view.DockPanel(), &panel);
  EXPECT_EQ(view.log,
            (std::vector<std::string>{"hide", "prepare", "attach", "show", "show", "finished"}));
  EXPECT_EQ(panel.log, (std::vector<std::string>{"content", "panel show"}));
  EXPECT_EQ(panel.content, &view);
  EXPECT_FALSE(panel.titleButtonFlat);
  EXPECT_FALSE(panel.draggable);
  EXPECT_FALSE(panel.bevels);
  EXPECT_EQ(panel.side, TDockAlign::Top);
  EXPECT_EQ(panel.titleBarPosition, 2);
  EXPECT_EQ(panel.size, 120);

  // The panel's callback captures the placement after the user moved it.
  panel.side = TDockAlign::Right;
  panel.size = 260;
  panel.onChanged();
  EXPECT_EQ(placement.Align, TDockAlign::Right);
  EXPECT_EQ(placement.DockedSize, 260);
  EXPECT_TRUE(placement.Visible);
}

TEST(DisplayFormTest, DestroyedFormLeavesThePanelEmpty) {
  TRepresentationManager manager;
  TFakePanel panel;
  {
    TFakeView view("ClassView", manager);
    view.Dock(panel);
  }
  EXPECT_EQ(panel.content, nullptr);
  EXPECT_FALSE(panel.onChanged);
}

TEST(DisplayFormTest, UndockLeavesThePanelAndFloats) {
  TRepresentationManager manager;
  TFakeView view("ClassView", manager);
  {
    TFakePanel panel;
    view.Dock(panel);
    view.log.clear();
    view.Undock();
    EXPECT_EQ(panel.content, nullptr);
  }
  EXPECT_FALSE(view.IsDocked());
  EXPECT_EQ(view.DockPanel(), nullptr);
  EXPECT_EQ(view.log, (std::vector<std::string>{"hide", "detach"}));
  view.Undock();  // floating already: nothing happens
  EXPECT_EQ(view.log.size(), 2u);
}

TEST(DisplayFormTest, ActivateAndIsActive) {
  struct Case {
    const char* name;
    bool docked;
    bool collapsed;
    bool canFocus;
    std::vector<std::string> viewLog;
    std::vector<std::string> panelLog;
  };
  const Case cases[] = {
      {.name = "floating, no focus control",
       .docked = false,
       .collapsed = false,
       .canFocus = false,
       .viewLog = {"to front"},
       .panelLog = {}},
      {.name = "floating with a focus control",
       .docked = false,
       .collapsed = false,
       .canFocus = true,
       .viewLog = {"to front", "focus"},
       .panelLog = {}},
      {.name = "docked, collapsed, focus control",
       .docked = true,
       .collapsed = true,
       .canFocus = true,
       .viewLog = {"focus"},
       .panelLog = {"parent to front", "expand"}},
      {.name = "docked, collapsed, nothing to focus",
       .docked = true,
       .collapsed = true,
       .canFocus = false,
       .viewLog = {},
       .panelLog = {"parent to front"}},
  };
  for (const Case& c : cases) {
    TRepresentationManager manager;
    TFakePanel panel;
    TFakeView view("ClassView", manager);
    if (c.docked) view.Dock(panel);
    view.log.clear();
    panel.log.clear();
    panel.collapsed = c.collapsed;
    view.canFocus = c.canFocus;
    view.Activate();
    EXPECT_EQ(view.log, c.viewLog) << c.name;
    EXPECT_EQ(panel.log, c.panelLog) << c.name;

    // Docked views ask the window holding the panel; floating ones their own window.
    view.activeControlInside = c.docked;
    view.activeWindow = !c.docked;
    EXPECT_TRUE(view.IsActive()) << c.name;
    view.activeControlInside = !c.docked;
    view.activeWindow = c.docked;
    EXPECT_FALSE(view.IsActive()) << c.name;
  }
}

TEST(DisplayFormListTest, FormsJoinAndLeaveAndCaptureTogether) {
  TRepresentationManager manager;
  TWindowPlacementList placements;
  TCustomDisplayFormList list;
  auto classView = std::make_unique<TFakeView>("ClassView", manager, &list);
  auto contextBar = std::make_unique<TFakeView>("ContextBar", manager, &list);
  classView->SetPlacement(&placements.Add("ClassView", kAllPlacementAttributes));
  contextBar->SetPlacement(&placements.Add("ContextBar", kAllPlacementAttributes));
  classView->shown = true;
  classView->window.bounds = {7, 8, 90, 100};
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Find("contextbar"), contextBar.get());
  EXPECT_EQ(list.Find("Browser"), nullptr);

  list.CaptureAll();
  EXPECT_TRUE(placements.IsOpen("ClassView"));
  EXPECT_FALSE(placements.IsOpen("ContextBar"));
  EXPECT_EQ(placements.Find("ClassView")->Left, 7);

  contextBar.reset();
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(&list.At(0), classView.get());
}

TEST(DisplayFormListTest, FormsOutliveTheirList) {
  TRepresentationManager manager;
  auto list = std::make_unique<TCustomDisplayFormList>();
  TFakeView view("ClassView", manager, list.get());
  list.reset();
  SUCCEED();  // the view's destructor must not reach the list that is gone
}

}  // namespace
}  // namespace velmora::testing
