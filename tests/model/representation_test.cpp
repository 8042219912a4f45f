// Representation slots: views take and give back slots while objects exist, and change
// signals reach the views' clients.
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "model/class_list.h"
#include "model/representation.h"

namespace velmora {
namespace {

struct CountingClient : TRepresentationClient {
  void RepresentationChanged(TRepresentedObject& /*object*/) override { ++calls; }
  int calls = 0;
};

TEST(RepresentationTest, SlotsReachEveryObjectBeforeAndAfter) {
  TRepresentationManager manager;
  std::vector<std::unique_ptr<TRepresentedObject>> objects;
  for (int i = 0; i < 5000; ++i) {
    objects.push_back(std::make_unique<TRepresentedObject>(manager));
    if (i % 2 == 0) objects.back()->Representations();  // shown once before any view opened
  }
  EXPECT_FALSE(objects[1]->HasRepresentations());
  CountingClient first, second;
  EXPECT_EQ(manager.AddSlot(&first), 0);
  EXPECT_EQ(manager.AddSlot(&second), 1);
  for (int i = 0; i < 5000; i += 2) {
    ASSERT_EQ(objects[i]->Representations().Count(), 2) << i;
    objects[i]->Representation(1)->SetData(static_cast<uint32_t>(i));
  }
  auto later = std::make_unique<TRepresentedObject>(manager);
  EXPECT_EQ(later->Representations().Count(), 2);
  EXPECT_EQ(later->Representations().Peek(0), nullptr);  // entries are made on first use
  EXPECT_NE(later->Representation(0), nullptr);

  // The first view closes: its entries go, the second view's data moves down with it.
  manager.RemoveSlot(first.Slot());
  EXPECT_EQ(first.Slot(), -1);
  EXPECT_EQ(second.Slot(), 0);
  for (int i = 0; i < 5000; i += 2) {
    ASSERT_EQ(objects[i]->Representations().Count(), 1) << i;
    ASSERT_EQ(objects[i]->Representation(second.Slot())->Data(), static_cast<uint32_t>(i)) << i;
  }
  EXPECT_EQ(later->Representations().Count(), 1);
  manager.RemoveSlot(second.Slot());
  manager.RemoveSlot(7);  // no such slot
  EXPECT_EQ(objects[0]->Representations().Count(), 0);
  EXPECT_EQ(objects[0]->Representation(0), nullptr);

  EXPECT_EQ(manager.RegisteredCount(), 2501);
  objects.clear();
  later.reset();
  EXPECT_EQ(manager.RegisteredCount(), 0);
}

TEST(RepresentationTest, ChangedTellsAllOrOne) {
  TRepresentationManager manager;
  CountingClient a, b;
  manager.AddSlot(&a);
  manager.AddSlot(&b);
  TRepresentedObject never(manager), shown(manager);
  never.SignalChanged(-1);
  EXPECT_FALSE(never.HasRepresentations());
  EXPECT_EQ(a.calls + b.calls, 0);

  TRepresentation* r = shown.Representation(1);
  shown.SignalChanged(-1);
  shown.SignalChanged(1);
  shown.SignalChanged(5);  // no such slot
  EXPECT_EQ(a.calls, 1);
  EXPECT_EQ(b.calls, 2);
  EXPECT_EQ(r->ChangeCount(), 2u);
  r->SetFlag(1);
  r->SetData(9);
  shown.Representations().ResetAll();
  EXPECT_EQ(r->Data() + r->Flag() + r->ChangeCount(), 0u);
  EXPECT_EQ(shown.Representations().IndexOf(r), 1);
  EXPECT_EQ(r->Owner(), &shown.Representations());
}

TEST(RepresentationTest, NotifyAllReachesEverythingAClassListHolds) {
  CountingClient view;
  TRepresentationManager& manager = RepresentationManager();
  const int slot = manager.AddSlot(&view);
  {
    TClasslist list;
    TClassDescription* cls = list.FindOrAdd("TA", TLanguage::Cpp);
    std::vector<TRepObject*> shown = {
        cls, cls->NestedClasses()->FindOrAdd("TB", TLanguage::Cpp),
        cls->Fields.FindOrAdd("f", "int", TVisibility::Public),
        cls->Methods.FindOrAdd("m", TParameterList(TLanguage::Cpp), "", TVisibility::Public,
                               TMethodKind::Procedure),
        list.Routines.FindOrAdd("r", "a.h", TLanguage::Cpp, TParameterList(TLanguage::Cpp), "",
                                TVisibility::Public, TMethodKind::Procedure)};
    for (TRepObject* o : shown) o->Representations();
    list.NotifyAll(-1);
    EXPECT_EQ(view.calls, 5);
    list.NotifyAll(slot + 1);  // another view's slot: not this one
    EXPECT_EQ(view.calls, 5);
  }
  manager.RemoveSlot(view.Slot());
}

TEST(RepresentationTest, ObjectsComeAndGoWhileViewsOpenAndClose) {
  TRepresentationManager manager;
  std::vector<std::thread> workers;
  for (int t = 0; t < 2; ++t)
    workers.emplace_back([&manager] {
      for (int i = 0; i < 2000; ++i) {
        TRepresentedObject o(manager);
        o.Representations().Get(0);
        o.SignalChanged(-1);
      }
    });
  for (int i = 0; i < 200; ++i) manager.RemoveSlot(manager.AddSlot());
  for (std::thread& w : workers) w.join();
  EXPECT_EQ(manager.SlotCount(), 0);
  EXPECT_EQ(manager.RegisteredCount(), 0);
}

}  // namespace
}  // namespace velmora
