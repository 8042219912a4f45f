// Walks over a class list: merging two lists, ancestor chains, inherits-from, and the
// hierarchy tree with its odd inputs (missing ancestors, equal names, cycles).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/class_list.h"
#include "model/hierarchy.h"
#include "support/stream.h"

namespace velmora {
namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

// Classes from "Name:Ancestor" entries ("Name" alone: no ancestor).
void AddClasses(TCommonClassList& list, TLanguage lang, std::vector<std::string> entries) {
  for (const std::string& e : entries) {
    const size_t colon = e.find(':');
    TClassDescription* cls = list.FindOrAdd(e.substr(0, colon), lang);
    if (colon != std::string::npos) cls->Ancestors.Add(TVisibility::Public, e.substr(colon + 1));
  }
}

std::string Chain(const std::vector<TClassDescription*>& chain) {
  std::string s;
  for (const TClassDescription* cls : chain) s += (s.empty() ? "" : " ") + cls->Name;
  return s;
}

TEST(ClassListWalksTest, MergeTakesBothInOneOrderAndOwnsNothing) {
  TClasslist a, b;
  AddClasses(a, C, {"TX", "TB", "Ta"});
  AddClasses(b, P, {"TX", "TC"});
  a.Routines.FindOrAdd("f", "a.h", C, TParameterList(C), "", TVisibility::Public,
                       TMethodKind::Procedure);
  b.Routines.FindOrAdd("f", "b.pas", P, TParameterList(P), "", TVisibility::Public,
                       TMethodKind::Procedure);
  {
    TClasslist merged;
    merged.SetReference(true);
    merged.FindOrAdd("TStale", C);  // a reference list makes nothing
    merged.MergeFrom(a, b);
    std::vector<std::string> got;
    for (int i = 0; i < merged.Count(); ++i)
      got.push_back(merged.Items(i)->Name + LanguageText(merged.Items(i)->Language).data());
    // Of equal names a's comes first.
    EXPECT_EQ(got, (std::vector<std::string>{"TBC++", "TCPascal", "TXC++", "TXPascal", "TaC++"}));
    ASSERT_EQ(merged.Routines.Count(), 2);
    EXPECT_EQ(merged.Routines.Items(0), a.Routines.Items(0));
    merged.MergeFrom(a, b);  // fills afresh
    EXPECT_EQ(merged.Count(), 5);
    merged.Clear();
  }
  EXPECT_EQ(a.Count() + b.Count(), 5);  // ASan tells if anything was freed twice
  TClasslist owning;
  owning.MergeFrom(a, b);
  EXPECT_EQ(owning.Count(), 0);
}

TEST(ClassListWalksTest, AncestorChainsAndInheritsFrom) {
  TClasslist list;
  AddClasses(list, C,
             {"TForm1:TForm", "TForm:TCustomForm", "TCustomForm:TWinControl", "TSelf:TSelf",
              "TA:TB", "TB:TA", "TRoot", "TOnRoot:TRoot", "TLost:TNowhere"});
  TClasslist other;
  AddClasses(other, C, {"TWinControl:TControl"});
  AddClasses(list, P, {"TObject", "TPas:TObject"});
  struct Case {
    const char* cls;
    const char* chain;     // in `list` alone
    const char* ancestor;  // asked of InheritsFrom(list, other)
    bool inherits;
  } cases[] = {
      // clang-format off
      {.cls = "TForm1", .chain = "TForm TCustomForm", .ancestor = "TControl", .inherits = true},
      {.cls = "TForm1", .chain = "TForm TCustomForm", .ancestor = "tform", .inherits = false},  // C++ names keep their case
      {.cls = "TSelf", .chain = "TSelf", .ancestor = "TSelf", .inherits = true},                // the direct ancestor is asked first
      {.cls = "TSelf", .chain = "TSelf", .ancestor = "TObject", .inherits = false},
      {.cls = "TA", .chain = "TB TA", .ancestor = "TZ", .inherits = false},  // a cycle ends the walk
      {.cls = "TA", .chain = "TB TA", .ancestor = "TA", .inherits = true},
      {.cls = "TRoot", .chain = "", .ancestor = "TRoot", .inherits = false},
      {.cls = "TOnRoot", .chain = "TRoot", .ancestor = "TRoot", .inherits = true},
      {.cls = "TLost", .chain = "", .ancestor = "TNowhere", .inherits = true},
      // A Pascal class without ancestors descends from TObject, which names itself.
      {.cls = "TObject", .chain = "TObject", .ancestor = "TObject", .inherits = true},
      {.cls = "TPas", .chain = "TObject", .ancestor = "TOBJECT", .inherits = true},
      // clang-format on
  };
  for (const Case& c : cases) {
    const TClassDescription* cls = list.Find(c.cls);
    ASSERT_NE(cls, nullptr) << c.cls;
    std::vector<TClassDescription*> chain;
    list.GetAncestorChain(*cls, chain);
    EXPECT_EQ(Chain(chain), c.chain) << c.cls;
    EXPECT_EQ(TCommonClassList::InheritsFrom(&list, &other, c.ancestor, *cls), c.inherits)
        << c.cls << " from " << c.ancestor;
  }
  // Either list may be missing.
  const TClassDescription& form1 = *list.Find("TForm1");
  EXPECT_FALSE(TCommonClassList::InheritsFrom(&list, nullptr, "TControl", form1));
  EXPECT_TRUE(TCommonClassList::InheritsFrom(nullptr, &list, "TCustomForm", form1));
  EXPECT_TRUE(TCommonClassList::InheritsFrom(nullptr, nullptr, "TForm", form1));
  EXPECT_EQ(form1.GetImageIndex([&list](const TClassDescription& c, std::string_view a) {
    return TCommonClassList::InheritsFrom(&list, nullptr, a, c);
  }),
            16);
}

// "name(child,child)" for the subtree of `node`, children in tree order.
std::string Tree(const TBaseHierarchyNode* node) {
  std::string s = node->GetNodeName();
  if (node->Children.empty()) return s;
  s += "(";
  for (size_t i = 0; i < node->Children.size(); ++i) s += (i ? "," : "") + Tree(node->Children[i]);
  return s + ")";
}

TEST(HierarchyTest, BuildPlacesEveryClassAndSortOrdersChildren) {
  TClasslist list;
  AddClasses(list, C,
             {"TForm:TCustomForm", "TCustomForm", "TForm1:TForm", "TButton:TWinControl",
              "TAbout:TForm", "TSelf:TSelf", "TA:TB", "TB:TA"});
  TBaseHierarchy tree;
  tree.BuildFromClasses(list);
  EXPECT_EQ(tree.AllNodes.size(), 8u);
  // Missing ancestors and self-ancestry put classes under the root; the cycle is
  // unreachable from it.
  EXPECT_EQ(Tree(tree.Root()), "(TButton,TCustomForm(TForm(TAbout,TForm1)),TSelf)");
  TBaseHierarchyNode* a = tree.FindNode("ta");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->ParentNode, tree.FindNode("TB"));
  EXPECT_EQ(tree.FindNode("TB")->ParentNode, a);
  EXPECT_EQ(tree.FindNode("TNone"), nullptr);

  tree.Sort([](const TBaseHierarchyNode& x, const TBaseHierarchyNode& y) {
    return x.GetNodeName().size() < y.GetNodeName().size();
  });
  EXPECT_EQ(Tree(tree.Root()), "(TSelf,TButton,TCustomForm(TForm(TAbout,TForm1)))");
  tree.Sort();
  EXPECT_EQ(Tree(tree.Root()), "(TButton,TCustomForm(TForm(TAbout,TForm1)),TSelf)");

  tree.Clear();
  EXPECT_TRUE(tree.Root()->Children.empty());
  EXPECT_TRUE(tree.AllNodes.empty());
}

TEST(HierarchyTest, EqualNamesChildrenGoToTheFirst) {
  // A merged view of two lists may hold two classes of one name (the tree's names compare
  // case-insensitively); the list's case-sensitive order puts TBASE first, and the tree's
  // stable sort keeps it there.
  TClasslist a, b;
  AddClasses(a, C, {"TBase", "TChild:tbase"});
  AddClasses(b, P, {"TBASE"});
  TClasslist merged;
  merged.SetReference(true);
  merged.MergeFrom(a, b);
  TBaseHierarchy tree;
  tree.BuildFromClasses(merged);
  const TBaseHierarchyNode* first = tree.FindNode("tbase");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->Data, b.Find("TBASE")) << "the node sorting first is found";
  EXPECT_EQ(Tree(tree.Root()), "(TBASE(TChild),TBase)");
}

TEST(ClassListWalksTest, ReferenceListKeepsNothingItReads) {
  TClasslist list;
  list.FindOrAdd("TOuter", C)->NestedClasses()->FindOrAdd("TMid", C);
  list.FindOrAdd("TOther", C);
  TMemoryStream stream;
  list.TCommonClassList::SaveToStream(stream);
  stream.Seek(0);
  TClasslist reference;
  reference.SetReference(true);
  reference.TCommonClassList::LoadFromStream(stream);
  EXPECT_EQ(reference.Count(), 0);
  EXPECT_EQ(stream.Remaining(), 0);
}

}  // namespace
}  // namespace velmora
