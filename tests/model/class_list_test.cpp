// Name indexes, find-or-add and mark and sweep of members, classes and routines, and the
// include lists.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/class_list.h"

namespace velmora {

namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

TParameterList Params(TLanguage lang, std::string_view text) {
  TParameterList list(lang);
  list.Parse(text);
  return list;
}

// "Name(ParamTypes)" of every method in index order.
std::vector<std::string> Methods(const TMethodDescriptionList& list) {
  std::vector<std::string> out;
  for (int i = 0; i < list.Count(); ++i)
    out.push_back(list.Items(i)->Name + "(" + list.Items(i)->Parameters.GetText() + ")");
  return out;
}

std::vector<std::string> Names(const TCommonClassList& list) {
  std::vector<std::string> out;
  for (int i = 0; i < list.Count(); ++i) out.push_back(list.Items(i)->Name);
  return out;
}

TEST(MethodListTest, OverloadsKeepDeclarationOrderAndCaseFollowsLanguage) {
  struct Case {
    TLanguage lang;
    std::vector<std::string> expected;
    int fooFirst;  // index of the first entry Find("FOO") lands on, -1 none
  } cases[] = {
      {C, {"Bar(int)", "Foo(int)", "Foo(char*)", "foo()"}, -1},
      {P, {"Bar(int)", "Foo(int)", "foo()", "Foo(char*)"}, 1},
  };
  for (const Case& c : cases) {
    TMethodDescriptionList list(c.lang);
    list.FindOrAdd("Foo", Params(C, "int"), "", TVisibility::Public, TMethodKind::Procedure);
    list.FindOrAdd("foo", Params(C, ""), "", TVisibility::Public, TMethodKind::Procedure);
    list.FindOrAdd("Foo", Params(C, "char*"), "", TVisibility::Public, TMethodKind::Procedure);
    list.FindOrAdd("Bar", Params(C, "int"), "", TVisibility::Public, TMethodKind::Procedure);
    EXPECT_EQ(Methods(list), c.expected) << LanguageText(c.lang);
    EXPECT_EQ(list.IndexOfName("FOO"), c.fooFirst) << LanguageText(c.lang);
    EXPECT_TRUE(list.IsOverloaded(1)) << LanguageText(c.lang);
    EXPECT_FALSE(list.IsOverloaded(0)) << LanguageText(c.lang);
  }
}

TEST(MethodListTest, FindOrAddReusesWhatItCan) {
  TMethodDescriptionList list(C);
  TMethodDescription* f =
      list.FindOrAdd("f", Params(C, "int a"), "void", TVisibility::Public, TMethodKind::Procedure);
  // Same parameter types under other names: the same method, updated.
  EXPECT_EQ(
      list.FindOrAdd("f", Params(C, "int b"), "int", TVisibility::Private, TMethodKind::Function),
      f);
  EXPECT_EQ(f->ResultType, "int");
  EXPECT_EQ(f->Visibility, TVisibility::Private);
  EXPECT_EQ(f->Parameters[0].Name, "b");
  // A valid f with other parameters: a new overload.
  TMethodDescription* g =
      list.FindOrAdd("f", Params(C, "long"), "", TVisibility::Public, TMethodKind::Procedure);
  EXPECT_NE(g, f);
  // Re-parse: the only h, still unseen, changed its signature and keeps its object.
  TMethodDescription* h =
      list.FindOrAdd("h", Params(C, "int"), "", TVisibility::Public, TMethodKind::Procedure);
  list.SetValid(false);
  EXPECT_EQ(list.FindOrAdd("h", Params(C, "char"), "", TVisibility::Public, TMethodKind::Procedure),
            h);
  EXPECT_TRUE(h->Valid);
  // An overloaded name is never guessed: f(char) is new.
  EXPECT_EQ(list.Count(), 3);
  list.FindOrAdd("f", Params(C, "char"), "", TVisibility::Public, TMethodKind::Procedure);
  EXPECT_EQ(list.Count(), 4);
}

TEST(ClassDescriptionTest, SetValidAndRemoveWithValid) {
  TClasslist classes;
  TClassDescription* cls = classes.FindOrAdd("TFoo", C);
  for (const char* name : {"a", "b", "c", "d"})
    cls->Fields.FindOrAdd(name, "int", TVisibility::Public);
  TMethodDescription* keep = cls->Methods.FindOrAdd("Foo", Params(C, "char*"), "",
                                                    TVisibility::Public, TMethodKind::Procedure);
  cls->Methods.FindOrAdd("Foo", Params(C, "int"), "", TVisibility::Public, TMethodKind::Procedure);
  cls->Methods.FindOrAdd("foo", Params(C, ""), "", TVisibility::Public, TMethodKind::Procedure);
  TClassDescription* inner = cls->NestedClasses()->FindOrAdd("TInner", C);
  inner->Fields.FindOrAdd("x", "int", TVisibility::Public);
  EXPECT_EQ(classes.CountAll(), 2);

  cls->SetValid(false, true);
  EXPECT_FALSE(inner->Valid);
  EXPECT_FALSE(inner->Fields.Items(0)->Valid);
  // The parser finds b and the char* overload again; consecutive invalid entries at both
  // ends must all go, which only a walk from the end does without skipping.
  cls->Fields.FindOrAdd("b", "int", TVisibility::Public);
  EXPECT_EQ(cls->Methods.FindOrAdd("Foo", Params(C, "char *"), "", TVisibility::Public,
                                   TMethodKind::Procedure),
            keep);
  cls->RemoveWithValid(false);
  ASSERT_EQ(cls->Fields.Count(), 1);
  EXPECT_EQ(cls->Fields.Items(0)->Name, "b");
  EXPECT_EQ(Methods(cls->Methods), std::vector<std::string>{"Foo(char *)"});
  EXPECT_EQ(cls->NestedClasses()->Count(), 0);
  EXPECT_EQ(classes.CountAll(), 1);
}

TEST(FieldListTest, DeclaratorLists) {
  struct Case {
    TLanguage lang;
    const char* text;
    std::vector<std::string> fields;  // name|type|modifier
  } cases[] = {
      {C, "int a, *b, c[3]", {"a|int|", "b|int *|", "c|int|[3]"}},
      {C, "char *p, q", {"p|char *|", "q|char|"}},
      {P, "A, B: Integer", {"A|Integer|", "B|Integer|"}},
      {P, "", {}},
  };
  for (const Case& c : cases) {
    TFieldDescriptionList list(nullptr, c.lang);
    std::vector<std::string> got;
    for (TFieldDescription* f : list.AddDeclaratorList(c.text, TVisibility::Private))
      got.push_back(f->Name + "|" + f->FieldType + "|" + f->Modifier);
    EXPECT_EQ(got, c.fields) << c.text;
    EXPECT_EQ(list.Count(), static_cast<int>(c.fields.size())) << c.text;
  }
  // Pascal field names compare case-insensitively, C++ ones do not.
  TFieldDescriptionList pascal(nullptr, P), cpp(nullptr, C);
  EXPECT_EQ(pascal.FindOrAdd("Foo", "T", TVisibility::Public),
            pascal.FindOrAdd("foo", "T", TVisibility::Public));
  EXPECT_NE(cpp.FindOrAdd("Foo", "T", TVisibility::Public),
            cpp.FindOrAdd("foo", "T", TVisibility::Public));
}

class CountingList : public TClasslist {
 public:
  void ClassAdded(TClassDescription* cls) override {
    TClasslist::ClassAdded(cls);
    added.push_back(cls->Name);
  }
  std::vector<std::string> added;
};

TEST(ClassListTest, FindOrAddMarkAndSweepOfOneUnit) {
  CountingList list;
  for (const char* name : {"TB", "TA", "TC"}) list.FindOrAdd(name, C)->UnitName = "a.h";
  list.FindOrAdd("TOther", C)->UnitName = "b.h";
  TClassDescription* ta = list.Find("TA");
  ta->Fields.FindOrAdd("gone", "int", TVisibility::Public);
  EXPECT_EQ(Names(list), (std::vector<std::string>{"TA", "TB", "TC", "TOther"}));
  EXPECT_EQ(list.added, (std::vector<std::string>{"TB", "TA", "TC", "TOther"}));
  EXPECT_EQ(list.Find("ta"), nullptr);  // the class index is case-sensitive in any language
  EXPECT_EQ(list.RootList, &list);
  EXPECT_EQ(ta->NestedClasses()->RootList, &list);
  EXPECT_EQ(ta->NestedClasses()->ParentList, &list);
  EXPECT_EQ(ta->NestedClasses()->OuterClass, ta);

  list.Mark("A.H", false);
  EXPECT_TRUE(list.Find("TOther")->Valid);
  EXPECT_EQ(list.FindOrAdd("TA", C), ta);  // found again: valid, same object, not announced
  EXPECT_EQ(list.added.size(), 4u);
  list.Sweep(false, "a.h");
  EXPECT_EQ(Names(list), (std::vector<std::string>{"TA", "TOther"}));
  EXPECT_EQ(ta->Fields.Count(), 0);  // stayed valid itself, lost its unseen member

  list.Mark(std::nullopt, false);
  list.Sweep(false, std::nullopt);
  EXPECT_EQ(list.Count(), 0);
}

TEST(ClassListTest, ReferenceListNeverFreesAndAcceptsDuplicates) {
  TClasslist a, b;
  a.FindOrAdd("TX", C);
  b.FindOrAdd("TX", P);
  {
    TClasslist merged;
    merged.SetReference(true);
    merged.AddReference(a.Find("TX"));
    merged.AddReference(b.Find("TX"));
    EXPECT_EQ(merged.Count(), 2);
    EXPECT_EQ(merged.FindOrAdd("TNew", C), nullptr);
    merged.Clear();
  }
  a.AddReference(b.Find("TX"));  // an owning list takes no references
  EXPECT_EQ(a.Count(), 1);
  EXPECT_EQ(b.Find("TX")->Language, P);  // still alive (ASan would tell otherwise)
}

TEST(RoutineListTest, FindOrAddPerFileAndSweepByFile) {
  TClasslist list;
  TRoutineList& r = list.Routines;
  TProcDescription* fa = r.FindOrAdd("f", "a.h", C, Params(C, "int"), "int", TVisibility::Public,
                                     TMethodKind::Function);
  TProcDescription* fb = r.FindOrAdd("f", "b.h", C, Params(C, "int"), "int", TVisibility::Public,
                                     TMethodKind::Function);
  EXPECT_NE(fa, fb);
  EXPECT_EQ(fa->Owner, &r);
  EXPECT_EQ(r.FindOrAdd("f", "A.H", C, Params(C, "int x"), "int", TVisibility::Public,
                        TMethodKind::Function),
            fa);
  r.FindOrAdd("g", "a.h", P, Params(P, ""), "", TVisibility::Public, TMethodKind::Procedure);
  EXPECT_EQ(r.Count(), 3);

  list.Mark("a.h", false);
  EXPECT_TRUE(fb->Valid);
  r.FindOrAdd("g", "a.h", P, Params(P, ""), "", TVisibility::Public, TMethodKind::Procedure);
  list.Sweep(false, "a.h");
  ASSERT_EQ(r.Count(), 2);
  EXPECT_EQ(r.Find("f", "b.h", Params(C, "int")), fb);
  EXPECT_EQ(r.Find("f", "a.h", Params(C, "int")), nullptr);
}

TEST(RoutineListTest, AChangedSignatureKeepsItsRoutineOnlyWhenItIsTheOneInItsFile) {
  TClasslist list;
  TRoutineList& r = list.Routines;
  auto add = [&](const char* file, const char* params) {
    return r.FindOrAdd("f", file, C, Params(C, params), "", TVisibility::Public,
                       TMethodKind::Procedure);
  };
  TProcDescription* fa = add("a.h", "int");
  TProcDescription* fb = add("b.h", "int");
  list.Mark("a.h", false);
  // The one f of a.h, unseen in this parse: the same routine with new parameters.
  EXPECT_EQ(add("a.h", "char"), fa);
  EXPECT_EQ(fa->Parameters[0].ParamType, "char");
  // fb is still valid: a new overload, placed after the others of its name.
  TProcDescription* fb2 = add("b.h", "char");
  EXPECT_NE(fb2, fb);
  ASSERT_EQ(r.Count(), 3);
  EXPECT_EQ(r.Items(2), fb2);
  // Two of them in b.h, both unseen: neither is guessed.
  list.Mark("b.h", false);
  TProcDescription* fresh = add("b.h", "double");
  EXPECT_NE(fresh, fb);
  EXPECT_NE(fresh, fb2);
  EXPECT_EQ(r.Count(), 4);
}

TEST(IncludeFilesListTest, Lookups) {
  TIncludeFilesList includes;
  const std::pair<const char*, std::vector<const char*>> units[] = {
      {"main.cpp", {"a.h", "b.h", "c.h"}}, {"other.cpp", {"B.H"}}, {"third.cpp", {"c.h", "d.h"}}};
  for (const auto& [unit, names] : units)
    for (const char* name : names) includes.FindOrAdd(unit)->IncludedNames.Add(name);
  EXPECT_EQ(includes.Count(), 3);
  EXPECT_EQ(includes.Find("MAIN.CPP"), includes.Items(0));

  TStringList result;
  EXPECT_TRUE(includes.UnitsIncluding("b.h", result));
  EXPECT_EQ(result.Count(), 2);
  EXPECT_FALSE(includes.UnitsIncluding("x.h", result));

  includes.NamesOnlyIncludedBy("main.cpp", result);
  ASSERT_EQ(result.Count(), 1);
  EXPECT_EQ(result.Strings(0), "a.h");

  includes.Remove("Other.cpp");
  includes.NamesOnlyIncludedBy("main.cpp", result);
  EXPECT_EQ(result.Count(), 2);
  EXPECT_EQ(includes.Find("other.cpp"), nullptr);
}

}  // namespace
}  // namespace velmora
