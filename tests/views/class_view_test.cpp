// The class view's nodes: roots, lazy children in their order, display forms, the member
// and class filters, and where domains and free routines go.
#include <gtest/gtest.h>

#include "class_view_fixture.h"
#include "model/filters.h"

namespace velmora::testing {
namespace {

constexpr char kAlpha[] = R"(
class TAlpha : public TObject {
public:
  int Count;
  void __fastcall Run(int Times);
  __property int Size = {read=Count};
private:
  bool FFlag;
  void Hidden();
protected:
  int Level;
  virtual void Paint();
__published:
  void __fastcall Click(TObject *Sender);
};
class TBeta { public: int X; };
class TEmpty {};
void FreeRoutine(int A);
)";

constexpr char kGamma[] = R"(unit Util;
interface
type
  TGamma = class(TObject)
  private
    FName: string;
  public
    function GetName(Index: Integer): string;
  end;
procedure Helper(A: Integer);
implementation
end.
)";

struct TAlphaView : TViewFixture {
  TAlphaView() {
    Reparse(Project, "Alpha.h", kAlpha);
    Reparse(Project, "Util.pas", kGamma);
  }
};

TEST(ClassViewRoots, NamedAfterTheProject) {
  struct Case {
    const char* name;
    std::string project;
    const char *classes, *files;
  };
  const Case cases[] = {
      {.name = "named",
       .project = "KilnLog",
       .classes = "KilnLog - Classes",
       .files = "KilnLog - Files"},
      {.name = "none", .project = "", .classes = "Classes", .files = "Files"},
  };
  for (const Case& c : cases) {
    TViewFixture f;
    f.Show(c.project);
    const TClassView& v = *f.View;
    EXPECT_EQ(v.Root(TClassView::pgClasses, TClassView::riProject).Text, c.classes) << c.name;
    EXPECT_EQ(v.Root(TClassView::pgClasses, TClassView::riExternal).Text, "External Classes")
        << c.name;
    EXPECT_EQ(v.Root(TClassView::pgFiles, TClassView::riProject).Text, c.files) << c.name;
    EXPECT_EQ(v.Root(TClassView::pgFiles, TClassView::riExternal).Text, "External Files") << c.name;
    EXPECT_EQ(v.Root(TClassView::pgClasses, TClassView::riProject).ImageIndex, 0) << c.name;
  }
}

TEST(ClassViewExpand, ChildrenAreInsertedOnlyWhenExpanded) {
  TAlphaView f;
  f.Show();
  TClassViewNode* alpha = f.ClassNode("TAlpha");
  ASSERT_NE(alpha, nullptr);
  EXPECT_TRUE(alpha->HasExpandMark);
  EXPECT_FALSE(alpha->ChildrenInserted);
  EXPECT_EQ(alpha->Count(), 0);
  // Nothing of the members has a node, nor even a representation table.
  EXPECT_FALSE(f.Project.Find("TAlpha")->Fields.Items(0)->HasRepresentations());

  TClassDescription& cls = *f.Project.Find("TAlpha");
  TRepresentation* rep = cls.Representations().Peek(f.View->Slot());
  ASSERT_NE(rep, nullptr);
  EXPECT_EQ(rep->Data(), alpha->Id);
  EXPECT_EQ(rep->Flag(), 0u);

  EXPECT_EQ(f.View->Expand(*alpha), TExpandResult::Inserted);
  EXPECT_TRUE(alpha->ChildrenInserted);
  EXPECT_EQ(rep->Flag(), 1u);
  EXPECT_EQ(alpha->Count(), 8);
  // Fields and properties in declaration order, then the methods.
  EXPECT_EQ(TViewFixture::Texts(*alpha),
            (std::vector<std::string>{"int Count", "int Size", "bool FFlag", "int Level",
                                      "void Click(TObject * Sender)", "void Hidden()",
                                      "void Paint()", "void Run(int Times)"}));
  EXPECT_EQ(alpha->Child(1)->Kind, TNodeKind::Property);
  EXPECT_EQ(f.View->NodeOf(*cls.Fields.Items(0)), alpha->Child(0));
  // Expanding again changes nothing.
  TClassViewNode* first = alpha->Child(0);
  EXPECT_EQ(f.View->Expand(*alpha), TExpandResult::Inserted);
  EXPECT_EQ(alpha->Child(0), first);

  TClassViewNode* empty = f.ClassNode("TEmpty");
  ASSERT_NE(empty, nullptr);
  EXPECT_FALSE(empty->HasExpandMark);
  EXPECT_EQ(f.View->Expand(*empty), TExpandResult::NothingToExpand);
  EXPECT_EQ(f.View->Expand(*alpha->Child(0)), TExpandResult::NothingToExpand);
}

TEST(ClassViewExpand, NestedClassesComeFirst) {
  TViewFixture f;
  Reparse(f.Project, "Outer.h", R"(
class TOuter {
public:
  int Value;
  class TInner { public: int Deep; };
  void Go();
};
)");
  f.Show();
  TClassViewNode* outer = f.ClassNode("TOuter");
  ASSERT_NE(outer, nullptr);
  f.View->ExpandAll(*outer);
  ASSERT_EQ(outer->Count(), 3);
  EXPECT_EQ(outer->Child(0)->Kind, TNodeKind::Class);
  EXPECT_EQ(outer->Child(0)->Text, "TInner");
  EXPECT_EQ(TViewFixture::Texts(*outer->Child(0)), std::vector<std::string>{"int Deep"});
  EXPECT_EQ(outer->Child(1)->Kind, TNodeKind::Field);
  EXPECT_EQ(outer->Child(2)->Kind, TNodeKind::Method);
}

TEST(ClassViewDisplayForms, FollowTheSettings) {
  struct Case {
    const char* name;
    bool args, types;
    const char *field, *method, *pascalMethod, *routine;
  };
  const Case cases[] = {
      {.name = "both",
       .args = true,
       .types = true,
       .field = "int Count",
       .method = "void Run(int Times)",
       .pascalMethod = "GetName(Index: Integer): string",
       .routine = "void FreeRoutine(int A)"},
      {.name = "neither",
       .args = false,
       .types = false,
       .field = "Count",
       .method = "Run",
       .pascalMethod = "GetName",
       .routine = "FreeRoutine"},
      {.name = "types only",
       .args = false,
       .types = true,
       .field = "int Count",
       .method = "Run",
       .pascalMethod = "GetName",
       .routine = "FreeRoutine"},
      {.name = "args only",
       .args = true,
       .types = false,
       .field = "Count",
       .method = "void Run(int Times)",
       .pascalMethod = "GetName(Index: Integer): string",
       .routine = "void FreeRoutine(int A)"},
  };
  for (const Case& c : cases) {
    TAlphaView f;
    f.Show();
    f.View->ExpandAll();
    // A settings change reaches the nodes on the next refresh, in place.
    TClassViewNode* count = f.ClassNode("TAlpha")->Child(0);
    f.Settings.SetShowMethArgs(c.args);
    f.Settings.SetShowMemTypes(c.types);
    f.View->Refresh();
    TClassViewNode* alpha = f.ClassNode("TAlpha");
    EXPECT_EQ(alpha->Child(0), count) << c.name;
    EXPECT_EQ(count->Text, c.field) << c.name;
    EXPECT_EQ(alpha->FindChild(c.method) != nullptr, true) << c.name;
    EXPECT_NE(f.ClassNode("TGamma")->FindChild(c.pascalMethod), nullptr) << c.name;
    TClassViewNode* routines = f.ProjectRoot().FindChild(kRoutineListText);
    ASSERT_NE(routines, nullptr) << c.name;
    EXPECT_NE(routines->FindChild(c.routine), nullptr) << c.name;
  }
}

TEST(ClassViewMemberFilter, HidesMembersByCategoryAndVisibility) {
  struct Hide {
    int category;
    TVisibility visibility;
  };
  struct Case {
    const char* name;
    std::vector<Hide> hidden;
    std::vector<std::string> children;
  };
  const Case cases[] = {
      {.name = "nothing hidden",
       .hidden = {},
       .children = {"Count", "Size", "FFlag", "Level", "Click", "Hidden", "Paint", "Run"}},
      {.name = "private fields",
       .hidden = {{mcFields, TVisibility::Private}},
       .children = {"Count", "Size", "Level", "Click", "Hidden", "Paint", "Run"}},
      // Public hides published with it: Click is published.
      {.name = "public methods",
       .hidden = {{mcMethods, TVisibility::Public}},
       .children = {"Count", "Size", "FFlag", "Level", "Hidden", "Paint"}},
      {.name = "public properties",
       .hidden = {{mcProperties, TVisibility::Public}},
       .children = {"Count", "FFlag", "Level", "Click", "Hidden", "Paint", "Run"}},
      {.name = "protected of every kind",
       .hidden = {{mcFields, TVisibility::Protected},
                  {mcMethods, TVisibility::Protected},
                  {mcProperties, TVisibility::Protected}},
       .children = {"Count", "Size", "FFlag", "Click", "Hidden", "Run"}},
      {.name = "all fields",
       .hidden = {{mcFields, TVisibility::Public},
                  {mcFields, TVisibility::Private},
                  {mcFields, TVisibility::Protected}},
       .children = {"Size", "Click", "Hidden", "Paint", "Run"}},
  };
  for (const Case& c : cases) {
    TAlphaView f;
    f.Settings.SetShowMethArgs(false);
    f.Settings.SetShowMemTypes(false);
    for (const Hide& h : c.hidden)
      f.Settings.MemberFilter().SetShown(h.category, h.visibility, false);
    f.Show();
    TClassViewNode* alpha = f.ClassNode("TAlpha");
    EXPECT_EQ(f.View->Expand(*alpha), TExpandResult::Inserted) << c.name;
    EXPECT_EQ(TViewFixture::Texts(*alpha), c.children) << c.name;
  }
}

TEST(ClassViewMemberFilter, AllMembersFilteredKeepsTheExpandMark) {
  TAlphaView f;
  for (int category : {mcFields, mcMethods, mcProperties})
    for (TVisibility v : {TVisibility::Public, TVisibility::Private, TVisibility::Protected})
      f.Settings.MemberFilter().SetShown(category, v, false);
  f.Show();
  TClassViewNode* alpha = f.ClassNode("TAlpha");
  EXPECT_EQ(f.View->Expand(*alpha), TExpandResult::AllFiltered);
  EXPECT_TRUE(alpha->HasExpandMark);
  EXPECT_FALSE(alpha->ChildrenInserted);
  EXPECT_EQ(alpha->Count(), 0);
  EXPECT_EQ(f.Project.Find("TAlpha")->Representations().Peek(f.View->Slot())->Flag(), 0u);
  std::string text;
  RenderNodeText(*alpha, 0, text);
  EXPECT_EQ(text, "class TAlpha  Alpha.h:2\n  ! All members of this class are filtered!\n");

  // Showing the fields again lets the next expansion insert them.
  f.Settings.MemberFilter().SetShown(mcFields, TVisibility::Public, true);
  EXPECT_EQ(f.View->Expand(*alpha), TExpandResult::Inserted);
  EXPECT_FALSE(alpha->AllMembersFiltered);
  EXPECT_EQ(alpha->Count(), 1);
}

TEST(ClassViewMemberFilter, RefreshCollapsesAClassWhoseMembersAllGetFiltered) {
  TAlphaView f;
  f.Show();
  TClassViewNode* beta = f.ClassNode("TBeta");
  f.View->Expand(*beta);
  ASSERT_EQ(beta->Count(), 1);
  f.Settings.MemberFilter().SetShown(mcFields, TVisibility::Public, false);
  f.View->Refresh();
  EXPECT_EQ(f.ClassNode("TBeta"), beta);
  EXPECT_EQ(beta->Count(), 0);
  EXPECT_FALSE(beta->ChildrenInserted);
  EXPECT_TRUE(beta->HasExpandMark);
  EXPECT_EQ(f.Project.Find("TBeta")->Representations().Peek(f.View->Slot())->Flag(), 0u);
  // The hidden field's entry names no node any more.
  EXPECT_EQ(
      f.Project.Find("TBeta")->Fields.Items(0)->Representations().Peek(f.View->Slot())->Data(), 0u);
  EXPECT_EQ(f.View->Expand(*beta), TExpandResult::AllFiltered);
}

TEST(ClassViewClassFilter, ShowsThePassingClasses) {
  struct Rule {
    int32_t type;
    const char* text;
    int32_t kind;
  };
  struct Case {
    const char* name;
    std::vector<Rule> rules;
    int32_t matchMode = 0;
    bool applyToProject = true;
    std::vector<std::string> shown;
  };
  const std::vector<Case> cases = {
      {.name = "unfiltered", .rules = {}, .shown = {"TAlpha", "TBeta", "TEmpty", "TGamma"}},
      {.name = "name contains",
       .rules = {{TFilter::ftClassName, "ta", TFilter::mkContains}},
       .shown = {"TAlpha", "TBeta"}},
      {.name = "name begins",
       .rules = {{TFilter::ftClassName, "TB", TFilter::mkBeginsWith}},
       .shown = {"TBeta"}},
      {.name = "negated equals",
       .rules = {{TFilter::ftClassName, "!talpha", TFilter::mkEquals}},
       .shown = {"TBeta", "TEmpty", "TGamma"}},
      {.name = "unit",
       .rules = {{TFilter::ftUnitName, "Util.pas", TFilter::mkEquals}},
       .shown = {"TGamma"}},
      {.name = "ancestor",
       .rules = {{TFilter::ftAncestor, "TObject", TFilter::mkEquals}},
       .shown = {"TAlpha", "TGamma"}},
      {.name = "all of two",
       .rules = {{TFilter::ftAncestor, "TObject", TFilter::mkEquals},
                 {TFilter::ftUnitName, ".h", TFilter::mkContains}},
       .matchMode = 1,
       .shown = {"TAlpha"}},
      {.name = "not applied to the project",
       .rules = {{TFilter::ftClassName, "TBeta", TFilter::mkEquals}},
       .applyToProject = false,
       .shown = {"TAlpha", "TBeta", "TEmpty", "TGamma"}},
  };
  for (const Case& c : cases) {
    TAlphaView f;
    f.Settings.UseGlobalsProject = false;
    TFilterDescription* filter = f.Settings.FilterList().Add("rule");
    for (const Rule& r : c.rules) filter->Add(r.type, r.text, r.kind);
    filter->MatchMode = c.matchMode;
    filter->ApplyToProject = c.applyToProject;
    f.Show();
    // Applying a filter keeps the nodes of the classes that pass it.
    TClassViewNode* alpha = f.ClassNode("TAlpha");
    f.View->SetClassFilter(filter);
    EXPECT_EQ(TViewFixture::Texts(f.ProjectRoot()), c.shown) << c.name;
    if (f.ClassNode("TAlpha")) {
      EXPECT_EQ(f.ClassNode("TAlpha"), alpha) << c.name;
    }
    // A class filtered out loses its node and its entry.
    for (const char* name : {"TAlpha", "TBeta", "TEmpty", "TGamma"}) {
      const bool shown = std::find(c.shown.begin(), c.shown.end(), name) != c.shown.end();
      EXPECT_EQ(f.ClassNode(name) != nullptr, shown) << c.name << " " << name;
      if (!shown) {
        EXPECT_EQ(f.Project.Find(name)->Representations().Peek(f.View->Slot())->Data(), 0u)
            << c.name << " " << name;
      }
    }
  }
}

TEST(ClassViewClassFilter, ComboEntries) {
  TViewFixture f;
  f.Settings.FilterList().Add("Forms");
  f.Settings.FilterList().Add("Dialogs");
  EXPECT_EQ(f.View->ClassFilterEntries(),
            (std::vector<std::string>{"[All Classes unfiltered]", "Dialogs", "Forms"}));
}

TEST(ClassViewPlacement, DomainsAndRoutines) {
  struct Case {
    const char* name;
    bool domainsBefore, domainsShown, globals;
    std::vector<std::string> root;
    std::vector<std::string> domain;  ///< children of "Core" when shown
  };
  const Case cases[] = {
      {.name = "after classes",
       .domainsBefore = false,
       .domainsShown = true,
       .globals = true,
       .root = {"TBeta", "TEmpty", "TGamma", "Core", kRoutineListText},
       .domain = {"TAlpha"}},
      {.name = "before classes",
       .domainsBefore = true,
       .domainsShown = true,
       .globals = true,
       .root = {"Core", "TBeta", "TEmpty", "TGamma", kRoutineListText},
       .domain = {"TAlpha"}},
      {.name = "domains off",
       .domainsBefore = false,
       .domainsShown = false,
       .globals = true,
       .root = {"TAlpha", "TBeta", "TEmpty", "TGamma", kRoutineListText},
       .domain = {}},
      {.name = "globals off",
       .domainsBefore = false,
       .domainsShown = true,
       .globals = false,
       .root = {"TBeta", "TEmpty", "TGamma", "Core"},
       .domain = {"TAlpha"}},
  };
  for (const Case& c : cases) {
    TAlphaView f;
    f.Project.Domains.CreateDomain("Core")->AddClass(f.Project.Find("TAlpha"));
    f.Settings.DomainsBefore = c.domainsBefore;
    f.Settings.DomainsInternal = c.domainsShown;
    f.Settings.UseGlobalsProject = c.globals;
    f.Show();
    EXPECT_EQ(TViewFixture::Texts(f.ProjectRoot()), c.root) << c.name;
    if (!c.domainsShown) continue;
    TClassViewNode* core = f.ProjectRoot().FindChild("Core");
    ASSERT_NE(core, nullptr) << c.name;
    EXPECT_EQ(core->Kind, TNodeKind::Domain) << c.name;
    EXPECT_TRUE(core->HasExpandMark) << c.name;
    EXPECT_EQ(core->Count(), 0) << c.name;
    EXPECT_EQ(f.View->Expand(*core), TExpandResult::Inserted) << c.name;
    EXPECT_EQ(TViewFixture::Texts(*core), c.domain) << c.name;
    EXPECT_EQ(f.View->NodeOf(*f.Project.Find("TAlpha"))->Parent, core) << c.name;
  }
}

TEST(ClassViewPlacement, ExternalRootShowsTheExternalList) {
  TViewFixture f;
  Reparse(f.Project, "Main.h", "class TMainForm : public TForm { public: int A; };\n");
  Reparse(f.External, "Forms.hpp", R"(
class TForm : public TCustomForm { public: int Visible; };
void ExternalRoutine();
)");
  f.Show();
  const TClassViewNode& external = f.View->Root(TClassView::pgClasses, TClassView::riExternal);
  // External free routines are off by default.
  EXPECT_EQ(TViewFixture::Texts(external), std::vector<std::string>{"TForm"});
  // A project class descending from an external TForm shows the form image.
  EXPECT_EQ(f.ClassNode("TMainForm")->ImageIndex, 16);
  f.Settings.UseGlobalsExternal = true;
  f.View->Refresh();
  EXPECT_EQ(TViewFixture::Texts(external), (std::vector<std::string>{"TForm", kRoutineListText}));
}

}  // namespace
}  // namespace velmora::testing
