// Refresh after a merge and removal of a file's objects: nodes of objects updated in
// place stay the same nodes; new objects get nodes; nodes of objects that went are gone
// and no entry names them.
#include <gtest/gtest.h>

#include "class_view_fixture.h"

namespace velmora::testing {
namespace {

constexpr char kBefore[] = R"(
class TShape : public TObject {
public:
  int Width;
  int Height;
  void Draw();
  class TPart { public: int Id; };
};
class TGone { public: int Left; };
void Helper(int A);
)";

// Height and TGone removed, Depth and Erase added, Draw's arguments changed.
constexpr char kAfter[] = R"(
class TShape : public TObject {
public:
  int Width;
  int Depth;
  void Draw(int Pen);
  void Erase();
  class TPart { public: int Id; };
};
void Helper(int A);
)";

struct TShapeView : TViewFixture {
  TShapeView() {
    Reparse(Project, "Shape.h", kBefore);
    Show();
    View->ExpandAll();
  }
  TClassViewNode* Member(std::string_view cls, std::string_view text) const {
    TClassViewNode* node = ClassNode(cls);
    return node ? node->FindChild(text) : nullptr;
  }
};

TEST(ClassViewRefresh, SameTextKeepsEveryNode) {
  TShapeView f;
  const std::string before = RenderClassViewText(*f.View, TClassView::pgClasses);
  TClassViewNode* shape = f.ClassNode("TShape");
  TClassViewNode* width = f.Member("TShape", "int Width");
  TClassViewNode* part = shape->FindChild("TPart");
  TClassViewNode* id = part->FindChild("int Id");
  TClassViewNode* routines = f.ProjectRoot().FindChild(kRoutineListText);
  TClassViewNode* helper = routines->FindChild("void Helper(int A)");
  const int count = f.View->NodeCount();

  Reparse(f.Project, "Shape.h", kBefore);
  f.View->Refresh();

  EXPECT_EQ(f.ClassNode("TShape"), shape);
  EXPECT_EQ(f.Member("TShape", "int Width"), width);
  EXPECT_EQ(shape->FindChild("TPart"), part);
  EXPECT_EQ(part->FindChild("int Id"), id);
  EXPECT_EQ(f.ProjectRoot().FindChild(kRoutineListText), routines);
  EXPECT_EQ(routines->FindChild("void Helper(int A)"), helper);
  EXPECT_EQ(f.View->NodeCount(), count);
  EXPECT_EQ(RenderClassViewText(*f.View, TClassView::pgClasses), before);
}

TEST(ClassViewRefresh, ChangedFileUpdatesInPlace) {
  TShapeView f;
  TClassViewNode* shape = f.ClassNode("TShape");
  TClassViewNode* width = f.Member("TShape", "int Width");
  TClassViewNode* draw = f.Member("TShape", "void Draw()");
  ASSERT_NE(draw, nullptr);

  Reparse(f.Project, "Shape.h", kAfter);
  f.View->Refresh();

  EXPECT_EQ(f.ClassNode("TShape"), shape);
  EXPECT_EQ(f.Member("TShape", "int Width"), width);
  // The only Draw, found invalid, took the new signature in place: same object, same node.
  EXPECT_EQ(f.Member("TShape", "void Draw(int Pen)"), draw);
  EXPECT_EQ(f.Member("TShape", "int Height"), nullptr);
  EXPECT_EQ(f.ClassNode("TGone"), nullptr);
  EXPECT_EQ(f.ProjectRoot().FindChild("TGone"), nullptr);
  // New members appear at once under a class whose children were inserted.
  EXPECT_EQ(TViewFixture::Texts(*shape),
            (std::vector<std::string>{"TPart", "int Width", "int Depth", "void Draw(int Pen)",
                                      "void Erase()"}));
  EXPECT_EQ(f.Member("TShape", "int Depth")->Parent, shape);
}

// What a host with items of its own hears: the subtrees that go, before they are freed,
// and the parents whose children were set anew.
struct TRecorder : TClassViewListener {
  std::vector<std::string> removed;
  std::vector<std::string> changed;
  void NodeRemoving(TClassViewNode& node) override {
    EXPECT_EQ(node.Parent->IndexOf(&node), -1) << node.Text;
    removed.push_back(node.Text);
  }
  void ChildrenChanged(TClassViewNode& parent) override { changed.push_back(parent.Text); }
};

TEST(ClassViewRefresh, ListenerHearsWhatGoes) {
  TShapeView f;
  TRecorder recorder;
  f.View->SetListener(&recorder);
  Reparse(f.Project, "Shape.h", kAfter);
  f.View->Refresh();
  EXPECT_EQ(recorder.removed, (std::vector<std::string>{"int Height", "TGone"}));
  EXPECT_NE(std::find(recorder.changed.begin(), recorder.changed.end(), "TShape"),
            recorder.changed.end());
  EXPECT_NE(std::find(recorder.changed.begin(), recorder.changed.end(), "Demo - Classes"),
            recorder.changed.end());
  f.View->SetListener(nullptr);
}

TEST(ClassViewRefresh, NewClassGetsACollapsedNode) {
  TShapeView f;
  Reparse(f.Project, "More.h", "class TMore { public: int A; };\n");
  f.View->Refresh();
  TClassViewNode* more = f.ClassNode("TMore");
  ASSERT_NE(more, nullptr);
  EXPECT_TRUE(more->HasExpandMark);
  EXPECT_FALSE(more->ChildrenInserted);
  EXPECT_EQ(TViewFixture::Texts(f.ProjectRoot()),
            (std::vector<std::string>{"TGone", "TMore", "TShape", kRoutineListText}));
}

TEST(ClassViewRefresh, ClassLosingAllMembersLosesItsExpandMark) {
  TShapeView f;
  TClassViewNode* gone = f.ClassNode("TGone");
  Reparse(f.Project, "Shape.h",
          std::string(kBefore).replace(std::string(kBefore).find("int Left;"), 9, ""));
  f.View->Refresh();
  EXPECT_EQ(f.ClassNode("TGone"), gone);
  EXPECT_EQ(gone->Count(), 0);
  EXPECT_FALSE(gone->HasExpandMark);
}

TEST(ClassViewRemoveFile, TakesOnlyThatFilesObjects) {
  struct Case {
    const char* name;
    const char* file;
    std::vector<std::string> root;
  };
  const Case cases[] = {
      {.name = "shape", .file = "Shape.h", .root = {"TOther", kRoutineListText}},
      {.name = "other case-blind",
       .file = "OTHER.PAS",
       .root = {"TGone", "TShape", kRoutineListText}},
      {.name = "unknown",
       .file = "None.h",
       .root = {"TGone", "TOther", "TShape", kRoutineListText}},
  };
  for (const Case& c : cases) {
    TShapeView f;
    Reparse(f.Project, "Other.pas", R"(unit Other;
interface
type
  TOther = class
  public
    Value: Integer;
  end;
procedure Tool;
implementation
end.
)");
    f.View->Refresh();
    f.View->ExpandAll();
    TClassDescription* shape = f.Project.Find("TShape");
    TFieldDescription* width = shape->Fields.Items(0);
    f.View->RemoveFileObjects(c.file);
    EXPECT_EQ(TViewFixture::Texts(f.ProjectRoot()), c.root) << c.name;
    const bool shapeGone = std::string(c.name) == "shape";
    // The objects still live (their file's removal frees them next); only the entries of
    // this view are cleared.
    EXPECT_EQ(shape->Representations().Peek(f.View->Slot())->Data() == 0, shapeGone) << c.name;
    EXPECT_EQ(width->Representations().Peek(f.View->Slot())->Data() == 0, shapeGone) << c.name;
    TClassViewNode* routines = f.ProjectRoot().FindChild(kRoutineListText);
    ASSERT_NE(routines, nullptr) << c.name;
    const size_t routineCount = std::string(c.name) == "unknown" ? 2 : 1;
    EXPECT_EQ(routines->Children.size(), routineCount) << c.name;
  }
}

TEST(ClassViewRemoveFile, ThenSweepAndRefreshLeavesNoStaleNode) {
  TShapeView f;
  f.View->RemoveFileObjects("Shape.h");
  f.Project.Mark("Shape.h", false);
  f.Project.Sweep(false, "Shape.h");
  f.View->Refresh();
  EXPECT_EQ(f.ProjectRoot().Count(), 0);
  EXPECT_EQ(f.View->NodeCount(), 4);  // the roots
}

TEST(ClassViewSlot, EveryViewKeepsItsOwnNode) {
  TShapeView f;
  TClassView second(f.Settings);
  second.SetSources({.ProjectClasses = &f.Project});
  const TClassDescription& shape = *f.Project.Find("TShape");
  ASSERT_NE(second.NodeOf(shape), nullptr);
  EXPECT_NE(second.NodeOf(shape), f.View->NodeOf(shape));
  EXPECT_EQ(f.View->NodeOf(shape), f.ClassNode("TShape"));

  // Closing the first view gives its slot back; the second view's slot moves down and it
  // still finds its nodes.
  const int slots = RepresentationManager().SlotCount();
  TClassViewNode* kept = second.NodeOf(shape);
  f.View.reset();
  EXPECT_EQ(RepresentationManager().SlotCount(), slots - 1);
  EXPECT_EQ(second.NodeOf(shape), kept);
}

}  // namespace
}  // namespace velmora::testing
