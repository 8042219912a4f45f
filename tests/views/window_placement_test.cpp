// Placements of the views: defaults, the keys of a view's section, what Apply and Capture
// touch, keeping windows on a smaller screen, and the list by name.
#include "views/window_placement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "display_fakes.h"
#include "model/settings_store.h"
#include "settings/project_settings.h"
#include "settings/registry_ini_store.h"
#include "settings/settings_test_support.h"

namespace velmora::testing {
namespace {

constexpr TPlacementAttributes kFloating =
    PlacementBit(TPlacementAttribute::Position) | PlacementBit(TPlacementAttribute::Width) |
    PlacementBit(TPlacementAttribute::Height) | PlacementBit(TPlacementAttribute::WindowState) |
    PlacementBit(TPlacementAttribute::Visible);

TEST(WindowPlacementTest, DefaultsBeforeAnythingIsStored) {
  const TWindowPlacementSettings p("ClassView", kFloating);
  EXPECT_EQ(p.Name, "ClassView");
  EXPECT_FALSE(p.Applying);
  EXPECT_EQ(p.AllowedAligns, 0b11110);
  EXPECT_EQ(p.SavedAttributes, kFloating);
  EXPECT_FALSE(p.StateSaved);
  EXPECT_EQ(p.Left, 2147483647);
  EXPECT_EQ(p.Top, 2147483647);
  EXPECT_EQ(p.Width, 2147483647);
  EXPECT_EQ(p.Height, 2147483647);
  EXPECT_EQ(p.WindowState, TWindowState::Normal);
  EXPECT_FALSE(p.Docked);
  EXPECT_EQ(p.Align, TDockAlign::Left);
  EXPECT_EQ(p.DockedSize, 2147483647);
  EXPECT_FALSE(p.Locked);
}

TEST(WindowPlacementTest, NothingAppliedBeforeAStateIsSaved) {
  TWindowPlacementSettings p("ClassView", kAllPlacementAttributes);
  p.Left = p.Top = 5;
  TFakeWindow w;
  p.Apply(w);
  EXPECT_EQ(w.setBoundsCalls, 0);
}

// Capture from one window, save through a store on disk, load into a fresh list, apply
// to another window: the second window stands where the first one stood.
TEST(WindowPlacementTest, FloatingAndDockedRoundTripThroughTheStoreOnDisk) {
  test::TTempDir dir;
  TFakeWindow floating;
  floating.bounds = {300, 200, 640, 480};
  floating.state = TWindowState::Maximized;
  TFakePanel panel;
  panel.side = TDockAlign::Bottom;
  panel.size = 150;
  TFakeWindow docked;
  docked.panel = &panel;
  docked.visible = false;
  {
    TWindowPlacementList list;
    list.Add("ClassView", kAllPlacementAttributes).Capture(floating);
    list.Add("ContextBar", kAllPlacementAttributes).Capture(docked);
    TRegistryIniStore store(dir / "registry.ini");
    list.Save(store);
    ASSERT_TRUE(store.Flush()) << store.LastError();
  }
  TRegistryIniStore store(dir / "registry.ini");
  ASSERT_TRUE(store.Load());
  TWindowPlacementList list;
  list.Add("ContextBar", kAllPlacementAttributes);
  list.Add("ClassView", kAllPlacementAttributes);
  list.Load(store);
  EXPECT_TRUE(list.IsOpen("ClassView"));
  EXPECT_FALSE(list.IsOpen("ContextBar"));
  EXPECT_TRUE(list.Find("ContextBar")->Docked);

  TFakeWindow again;
  list.Find("classview")->Apply(again);
  EXPECT_EQ(again.bounds, (TScreenRect{300, 200, 640, 480}));
  EXPECT_EQ(again.state, TWindowState::Maximized);

  TFakePanel panelAgain;
  TFakeWindow dockedAgain;
  dockedAgain.panel = &panelAgain;
  list.Find("ContextBar")->Apply(dockedAgain);
  EXPECT_EQ(panelAgain.side, TDockAlign::Bottom);
  EXPECT_EQ(panelAgain.size, 150);
  EXPECT_EQ(panelAgain.titleBarPosition, 0);
  EXPECT_EQ(dockedAgain.setBoundsCalls, 0);
}

// Only the attributes in the saved set reach the store, and only they come back.
TEST(WindowPlacementTest, OnlyTheSavedAttributesAreStoredAndRestored) {
  struct Case {
    const char* name;
    TPlacementAttributes saved;
    std::vector<std::string> keys;
    TScreenRect restored;  // applied to a window that stood at {1, 2, 3, 4}
  };
  const Case cases[] = {
      {.name = "position only",
       .saved = PlacementBit(TPlacementAttribute::Position),
       .keys = {"StateSaved", "PositionX", "PositionY"},
       .restored = {300, 200, 3, 4}},
      {.name = "width and height",
       .saved =
           PlacementBit(TPlacementAttribute::Width) | PlacementBit(TPlacementAttribute::Height),
       .keys = {"StateSaved", "Width", "Height"},
       .restored = {1, 2, 640, 480}},
      {.name = "docked side only",
       .saved =
           PlacementBit(TPlacementAttribute::Docked) | PlacementBit(TPlacementAttribute::Align),
       .keys = {"StateSaved", "Docked", "Align"},
       .restored = {1, 2, 3, 4}},
      {.name = "everything",
       .saved = kAllPlacementAttributes,
       .keys = {"StateSaved", "PositionX", "PositionY", "Width", "Height", "Visible", "State",
                "Docked", "Align", "Size"},
       .restored = {300, 200, 640, 480}},
  };
  const char* const allKeys[] = {"StateSaved", "PositionX", "PositionY", "Width", "Height",
                                 "Visible",    "State",     "Docked",    "Align", "Size"};
  for (const Case& c : cases) {
    TFakeWindow source;
    source.bounds = {300, 200, 640, 480};
    source.state = TWindowState::Minimized;
    TWindowPlacementSettings p("View", c.saved);
    p.Capture(source);
    TMemorySettingsStore store;
    p.Save(store, "View");
    EXPECT_EQ(store.ValueCount(), static_cast<int>(c.keys.size())) << c.name;
    for (const char* key : allKeys) {
      const bool expected = std::find(c.keys.begin(), c.keys.end(), key) != c.keys.end();
      EXPECT_EQ(store.ValueExists("View", key), expected) << c.name << ": " << key;
    }
    TWindowPlacementSettings loaded("View", c.saved);
    loaded.Load(store, "View");
    TFakeWindow target;
    target.bounds = {1, 2, 3, 4};
    loaded.Apply(target);
    EXPECT_EQ(target.bounds, c.restored) << c.name;
    const bool stateSaved = (c.saved & PlacementBit(TPlacementAttribute::WindowState)) != 0;
    EXPECT_EQ(target.state, stateSaved ? TWindowState::Minimized : TWindowState::Normal) << c.name;
  }
}

TEST(WindowPlacementTest, StoredValuesOutOfRange) {
  struct Case {
    const char* name;
    int32_t state;
    int32_t align;
    TDockAligns allowed;
    TWindowState expectedState;
    TDockAlign expectedAlign;
  };
  const Case cases[] = {
      {.name = "in range",
       .state = 2,
       .align = 2,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Maximized,
       .expectedAlign = TDockAlign::Bottom},
      {.name = "state too large",
       .state = 3,
       .align = 4,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Right},
      {.name = "state negative",
       .state = -1,
       .align = 1,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Top},
      {.name = "align none not allowed",
       .state = 0,
       .align = 0,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Top},
      {.name = "align client not allowed",
       .state = 0,
       .align = 5,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Top},
      {.name = "align client allowed",
       .state = 0,
       .align = 5,
       .allowed = kDefaultAllowedAligns | AlignBit(TDockAlign::Client),
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Client},
      {.name = "align out of range keeps the default",
       .state = 0,
       .align = 9,
       .allowed = kDefaultAllowedAligns,
       .expectedState = TWindowState::Normal,
       .expectedAlign = TDockAlign::Left},
  };
  for (const Case& c : cases) {
    TMemorySettingsStore store;
    store.WriteBool("Window Settings\\View", "StateSaved", true);
    store.WriteInteger("Window Settings\\View", "State", c.state);
    store.WriteInteger("Window Settings\\View", "Align", c.align);
    TWindowPlacementList list;
    TWindowPlacementSettings& p = list.Add("View", kAllPlacementAttributes);
    p.AllowedAligns = c.allowed;
    list.Load(store, "Window Settings");
    EXPECT_TRUE(p.StateSaved) << c.name;
    EXPECT_EQ(p.WindowState, c.expectedState) << c.name;
    EXPECT_EQ(p.Align, c.expectedAlign) << c.name;
    EXPECT_EQ(p.Left, kPlacementNotStored) << c.name;
  }
}

// A window stored on a larger screen opens inside the screen it finds.
TEST(WindowPlacementTest, WindowsAreKeptOnASmallerScreen) {
  struct Case {
    const char* name;
    TScreenRect stored;
    TScreenRect screen;
    TScreenRect expected;
  };
  const Case cases[] = {
      {.name = "inside stays",
       .stored = {100, 100, 400, 300},
       .screen = {0, 0, 1024, 768},
       .expected = {100, 100, 400, 300}},
      {.name = "right of a smaller screen",
       .stored = {1800, 100, 400, 300},
       .screen = {0, 0, 1024, 768},
       .expected = {624, 100, 400, 300}},
      {.name = "below a smaller screen",
       .stored = {100, 900, 400, 300},
       .screen = {0, 0, 1024, 768},
       .expected = {100, 468, 400, 300}},
      {.name = "hanging over the right edge",
       .stored = {900, 100, 400, 300},
       .screen = {0, 0, 1024, 768},
       .expected = {624, 100, 400, 300}},
      {.name = "larger than the screen",
       .stored = {50, 50, 1600, 1200},
       .screen = {0, 0, 1024, 768},
       .expected = {0, 0, 1024, 768}},
      {.name = "partly off the top-left",
       .stored = {-200, -50, 400, 300},
       .screen = {0, 0, 1024, 768},
       .expected = {0, 0, 400, 300}},
      {.name = "work area below a top panel",
       .stored = {10, 0, 400, 300},
       .screen = {0, 32, 1024, 736},
       .expected = {10, 32, 400, 300}},
      {.name = "second monitor to the left",
       .stored = {-1500, 100, 400, 300},
       .screen = {-1280, 0, 1280, 1024},
       .expected = {-1280, 100, 400, 300}},
      {.name = "no area reported",
       .stored = {5000, 5000, 400, 300},
       .screen = {0, 0, 0, 0},
       .expected = {5000, 5000, 400, 300}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ClampToScreen(c.stored, c.screen), c.expected) << c.name;

    TWindowPlacementSettings p("View", kAllPlacementAttributes);
    p.StateSaved = true;
    p.Left = c.stored.Left;
    p.Top = c.stored.Top;
    p.Width = c.stored.Width;
    p.Height = c.stored.Height;
    TFakeWindow floating;
    floating.screen = c.screen;
    p.Apply(floating);
    EXPECT_EQ(floating.bounds, c.expected) << c.name;

    // A docked view keeps its floating bounds for when it floats again: untouched.
    TFakePanel panel;
    TFakeWindow docked;
    docked.panel = &panel;
    docked.screen = c.screen;
    const TScreenRect before = docked.bounds;
    p.Apply(docked);
    EXPECT_EQ(docked.bounds, before) << c.name;
    EXPECT_EQ(docked.setBoundsCalls, 0) << c.name;
  }
}

TEST(WindowPlacementTest, ApplyingIsSetWhileApplyingAndCaptureWaits) {
  TWindowPlacementSettings p("View", kAllPlacementAttributes);
  p.StateSaved = true;
  p.Left = 10;
  p.Top = 20;
  p.Width = 300;
  p.Height = 200;
  TFakeWindow w;
  w.bounds = {500, 500, 50, 50};
  w.placement = &p;  // the window captures on every move, as a host's signal would
  p.Apply(w);
  EXPECT_TRUE(w.applyingSeen);
  EXPECT_FALSE(p.Applying);
  // The capture made during the move did not overwrite the placement being applied.
  EXPECT_EQ(w.bounds, (TScreenRect{10, 20, 300, 200}));
  EXPECT_EQ(p.Left, 10);
  EXPECT_EQ(p.Width, 300);
}

TEST(WindowPlacementTest, LockedDoesNothing) {
  TWindowPlacementSettings p("View", kAllPlacementAttributes);
  p.Locked = true;
  TFakeWindow w;
  p.Capture(w);
  EXPECT_FALSE(p.StateSaved);
  p.StateSaved = true;
  p.Left = p.Top = 0;
  p.Apply(w);
  EXPECT_EQ(w.setBoundsCalls, 0);
}

TEST(WindowPlacementTest, CollapsedPanelKeepsTheSizeItOpensTo) {
  TWindowPlacementSettings p("View", kAllPlacementAttributes);
  p.DockedSize = 180;
  TFakePanel panel;
  panel.collapsed = true;
  panel.size = 20;
  panel.side = TDockAlign::Top;
  TFakeWindow w;
  w.panel = &panel;
  p.Capture(w);
  EXPECT_TRUE(p.StateSaved);
  EXPECT_TRUE(p.Docked);
  EXPECT_EQ(p.Align, TDockAlign::Top);
  EXPECT_EQ(p.DockedSize, 180);

  TFakePanel other;
  w.panel = &other;
  p.Apply(w);
  EXPECT_EQ(other.titleBarPosition, 2);  // the title bar goes to the side for a top panel
}

TEST(WindowPlacementListTest, SortedByNameUniqueAndForgettable) {
  TWindowPlacementList list;
  list.Add("Gamma", kFloating);
  list.Add("alpha", kFloating);
  list.Add("Beta", kFloating);
  EXPECT_THROW(list.Add("ALPHA", 0), std::invalid_argument);
  ASSERT_EQ(list.Count(), 3);
  EXPECT_EQ(list.At(0).Name, "alpha");
  EXPECT_EQ(list.At(1).Name, "Beta");
  EXPECT_EQ(list.At(2).Name, "Gamma");
  EXPECT_EQ(list.At(0).SavedAttributes, kFloating);  // the failed Add changed nothing
  EXPECT_EQ(list.Find("delta"), nullptr);
  EXPECT_FALSE(list.IsOpen("delta"));

  list.Find("beta")->StateSaved = true;
  list.Find("beta")->Visible = true;
  EXPECT_TRUE(list.IsOpen("BETA"));
  list.ForgetState();
  EXPECT_FALSE(list.IsOpen("Beta"));
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
}

TEST(WindowPlacementListTest, SectionNames) {
  EXPECT_EQ(TWindowPlacementList::SectionName("", "ClassView"), "ClassView");
  EXPECT_EQ(TWindowPlacementList::SectionName("Window Settings", "ClassView"),
            "Window Settings\\ClassView");
}

// The project settings file keeps the four views it has sections for.
TEST(WindowPlacementListTest, RoundTripThroughTheProjectSettingsFile) {
  test::TTempDir dir;
  const std::string project = dir / "demo.bpr";
  TFakeWindow w;
  w.bounds = {40, 50, 600, 500};
  {
    TWindowPlacementList list;
    list.Add("ClassView", kAllPlacementAttributes).Capture(w);
    list.Add("MethodViewer", kAllPlacementAttributes).Capture(w);
    TCurrentProjectSettings settings;
    list.SaveToProject(settings);
    EXPECT_TRUE(settings.ClassViewWindow.Statesaved);
    EXPECT_FALSE(settings.ContextBarWindow.Statesaved);
    ASSERT_TRUE(settings.Save(project));
  }
  TCurrentProjectSettings settings;
  ASSERT_TRUE(settings.Load(project));
  TWindowPlacementList list;
  list.Add("ClassView", kAllPlacementAttributes);
  list.Add("ContextBar", kAllPlacementAttributes);
  list.LoadFromProject(settings);
  EXPECT_TRUE(list.IsOpen("ClassView"));
  EXPECT_FALSE(list.Find("ContextBar")->StateSaved);
  EXPECT_EQ(list.Find("ContextBar")->Left, kPlacementNotStored);
  TFakeWindow again;
  list.Find("ClassView")->Apply(again);
  EXPECT_EQ(again.bounds, (TScreenRect{40, 50, 600, 500}));
}

}  // namespace
}  // namespace velmora::testing
