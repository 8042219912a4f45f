// Domains (membership kept by name across re-parses, unique names) and the filters that
// hide classes and members, with their keys in the settings store.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/class_list.h"
#include "model/filters.h"
#include "model/settings_store.h"

namespace velmora {
namespace {

constexpr TLanguage C = TLanguage::Cpp;

std::vector<std::string> Members(const TDomain& d) {
  std::vector<std::string> out;
  for (const TClassDescription* cls : d.Classes) out.push_back(cls->Name);
  return out;
}

TEST(DomainTest, MembershipFollowsNamesThroughReparse) {
  TClasslist classes;
  TDomain* d = classes.Domains.CreateDomain("Kiln");
  for (const char* name : {"b", "TC", "A"}) d->AddClass(classes.FindOrAdd(name, C));
  d->AddClass(classes.Find("A"));  // twice: one entry
  EXPECT_EQ(Members(*d), (std::vector<std::string>{"A", "b", "TC"}));
  EXPECT_EQ(d->ClassNames.Count(), 3);
  EXPECT_FALSE(d->Saved);

  // A re-parse that loses TC frees it; the name stays and a new TC returns to the domain.
  classes.Find("TC")->UnitName = "kiln.h";
  classes.Mark("kiln.h", false);
  classes.Sweep(false, "kiln.h");
  EXPECT_EQ(Members(*d), (std::vector<std::string>{"A", "b"}));
  EXPECT_TRUE(d->ContainsName("TC"));
  EXPECT_FALSE(d->ContainsName("tc"));
  TClassDescription* tc = classes.FindOrAdd("TC", C);
  EXPECT_EQ(tc->Domain, d);
  EXPECT_EQ(d->Count(), 3);

  // Forgetting the name ends the membership for good.
  d->RemoveClass(tc, true);
  EXPECT_EQ(tc->Domain, nullptr);
  classes.Sweep(true, std::nullopt);  // frees every (valid) class
  EXPECT_EQ(d->Count(), 0);
  classes.FindOrAdd("TC", C);
  classes.FindOrAdd("A", C);
  EXPECT_EQ(Members(*d), std::vector<std::string>{"A"});

  // A class moves between domains with its name; a freed domain unlinks its classes.
  TDomain* other = classes.Domains.CreateDomain("Glaze");
  other->AddClass(classes.Find("A"));
  EXPECT_EQ(d->Count(), 0);
  EXPECT_FALSE(d->ContainsName("A"));
  classes.Domains.Remove(other);
  EXPECT_EQ(classes.Find("A")->Domain, nullptr);

  // A nested class put into a domain leaves it when its outer list frees it.
  TClassDescription* inner = classes.Find("TC")->NestedClasses()->FindOrAdd("TInner", C);
  d->AddClass(inner);
  classes.Find("TC")->SetValid(false, true);
  classes.Find("TC")->RemoveWithValid(false);
  EXPECT_EQ(d->Count(), 0);

  classes.Clear();
  EXPECT_EQ(classes.Domains.Count(), 0);
}

TEST(DomainTest, NamesAreUniqueAndNotBlank) {
  TDomainList domains;
  domains.CreateDomain("Kiln");
  TDomain* glaze = domains.CreateDomain(" Glaze ");
  EXPECT_EQ(glaze->Name, "Glaze");
  for (const char* bad : {"", "   ", "kiln", "GLAZE"}) {
    try {
      domains.CreateDomain(bad);
      ADD_FAILURE() << '"' << bad << "\" accepted";
    } catch (const EDuplicateDomainError& e) {
      EXPECT_STREQ(e.what(), "Domain names must be unique and may not be blank!") << bad;
    }
  }
  EXPECT_NO_THROW(domains.Rename(glaze, "glaze"));  // its own name in another case
  EXPECT_THROW(domains.Rename(glaze, "KILN"), EDuplicateDomainError);
  domains.Rename(glaze, "Asbestos");
  EXPECT_EQ(domains.Items(0), glaze);  // re-sorted
  EXPECT_EQ(domains.FindByName("ASBESTOS"), glaze);
  EXPECT_EQ(domains.Count(), 2);
}

struct CountingClient : TRepresentationClient {
  void RepresentationChanged(TRepresentedObject& /*object*/) override { ++calls; }
  int calls = 0;
};

TEST(DomainTest, NotifyAllReachesRoutinesAndDomains) {
  CountingClient client;
  const int slot = RepresentationManager().AddSlot(&client);
  {
    TClasslist classes;
    classes.FindOrAdd("TA", C)->Representations();
    classes.Domains.CreateDomain("D")->Representations();
    classes.Routines
        .FindOrAdd("f", "a.h", C, TParameterList(C), "", TVisibility::Public,
                   TMethodKind::Procedure)
        ->Representations();
    classes.NotifyAll(-1);
    EXPECT_EQ(client.calls, 3);
  }
  RepresentationManager().RemoveSlot(slot);
}

// A small tree: TForm1 -> TForm -> TCustomForm (not in the list), in unit "Main.h".
struct FilterModel {
  FilterModel() {
    TClassDescription* form = classes.FindOrAdd("TForm", C);
    form->Ancestors.Add(TVisibility::Public, "TCustomForm");
    form->UnitName = "Forms.hpp";
    form1 = classes.FindOrAdd("TForm1", C);
    form1->Ancestors.Add(TVisibility::Public, "TForm");
    form1->UnitName = "Main.h";
  }
  TClasslist classes;
  TClassDescription* form1;
};

TEST(FilterTest, TextAndMatching) {
  FilterModel m;
  using enum TFilter::Type;
  using enum TFilter::Kind;
  struct Case {
    const char* text;
    int32_t type, kind;
    const char* value;
    bool matches;
    bool negate = false, anyAncestor = false;
  } cases[] = {
      // clang-format off
      {.text = "orm", .type = ftClassName, .kind = mkContains, .value = "orm", .matches = true},
      {.text = "tform", .type = ftClassName, .kind = mkBeginsWith, .value = "tform", .matches = true},
      {.text = "TForm", .type = ftClassName, .kind = mkEquals, .value = "TForm", .matches = false},
      {.text = "!TForm", .type = ftClassName, .kind = mkEquals, .value = "TForm", .matches = true, .negate = true},
      // An empty value is in no subject; negated, it lets everything match.
      {.text = "", .type = ftClassName, .kind = mkContains, .value = "", .matches = false},
      {.text = "!", .type = ftClassName, .kind = mkBeginsWith, .value = "", .matches = true, .negate = true},
      // "*" means the whole chain only for the ancestor type.
      {.text = "*Form", .type = ftClassName, .kind = mkContains, .value = "*Form", .matches = false},
      {.text = "*TCustomForm", .type = ftAncestor, .kind = mkEquals, .value = "TCustomForm", .matches = true, .anyAncestor = true},
      {.text = "!*TCustomForm", .type = ftAncestor, .kind = mkEquals, .value = "TCustomForm", .matches = false, .negate = true, .anyAncestor = true},
      {.text = "*TWinControl", .type = ftAncestor, .kind = mkContains, .value = "TWinControl", .matches = false, .anyAncestor = true},
      {.text = "TCustomForm", .type = ftAncestor, .kind = mkEquals, .value = "TCustomForm", .matches = false},
      {.text = "tform", .type = ftAncestor, .kind = mkEquals, .value = "tform", .matches = true},
      {.text = ".H", .type = ftUnitName, .kind = mkContains, .value = ".H", .matches = true},
      {.text = "Forms", .type = ftUnitName, .kind = mkBeginsWith, .value = "Forms", .matches = false},
      // Types and kinds outside the tables match nothing, before negation.
      {.text = "TForm1", .type = 7, .kind = mkEquals, .value = "TForm1", .matches = false},
      {.text = "!TForm1", .type = ftClassName, .kind = 9, .value = "TForm1", .matches = true, .negate = true},
      // clang-format on
  };
  for (const Case& c : cases) {
    const TFilter f(c.text, c.type, c.kind);
    EXPECT_EQ(f.Negate, c.negate) << c.text;
    EXPECT_EQ(f.AnyAncestor, c.anyAncestor) << c.text;
    EXPECT_EQ(f.Value, c.value) << c.text;
    EXPECT_EQ(f.GetText(), c.text) << c.text;
    EXPECT_EQ(f.Matches(*m.form1), c.matches) << c.text << " type " << c.type;
  }
}

TEST(FilterTest, DescriptionMatchModes) {
  FilterModel m;
  TFilterDescription d;
  for (int32_t mode : {0, 1}) {
    d.MatchMode = mode;
    EXPECT_TRUE(d.Passes(*m.form1)) << "no filters, mode " << mode;
  }
  d.Add(TFilter::ftClassName, "Form1", TFilter::mkContains);
  d.Add(TFilter::ftUnitName, "Forms", TFilter::mkBeginsWith);
  d.MatchMode = 0;
  EXPECT_TRUE(d.Passes(*m.form1));
  EXPECT_TRUE(d.Passes(*m.classes.Find("TForm")));
  d.MatchMode = 1;
  EXPECT_FALSE(d.Passes(*m.form1));
  d.Items(1)->Negate = true;
  EXPECT_TRUE(d.Passes(*m.form1));
}

TEST(MemberFilterTest, SharedVisibilitiesAndStoreKeys) {
  TClassMemberFilter filter;
  filter.SetShown(mcMethods, TVisibility::Published, false);
  filter.SetShown(mcFields, TVisibility::Protected, false);
  for (TVisibility v : {TVisibility::Public, TVisibility::Published, TVisibility::Automated})
    EXPECT_FALSE(filter.IsShown(mcMethods, v)) << static_cast<int>(v);
  EXPECT_TRUE(filter.IsShown(mcMethods, TVisibility::Private));
  EXPECT_FALSE(filter.IsShown(mcFields, TVisibility::Protected));
  EXPECT_TRUE(filter.IsShown(mcFields, TVisibility::Public));
  EXPECT_TRUE(filter.IsShown(mcProperties, static_cast<TVisibility>(9)));

  TMemorySettingsStore store;
  filter.Save(store);
  EXPECT_EQ(store.ValueCount(), 15);
  EXPECT_FALSE(store.ReadBool("filter", "F02", true));
  EXPECT_FALSE(store.ReadBool("Filter", "F13", true));
  EXPECT_TRUE(store.ReadBool("Filter", "F21", false));
  TClassMemberFilter back;
  back.SetShown(mcProperties, TVisibility::Private, false);
  store.EraseSection("Filter");
  store.WriteBool("Filter", "F02", false);
  back.Load(store);  // missing keys mean shown
  EXPECT_TRUE(back.IsShown(mcProperties, TVisibility::Private));
  EXPECT_FALSE(back.IsShown(mcFields, TVisibility::Protected));
}

TEST(FilterListTest, StoreKeysRoundTripAndStaleSections) {
  TFilterList list;
  TFilterDescription* forms = list.Add("Forms");
  forms->MatchMode = 1;
  forms->ApplyToExternals = false;
  forms->Add(TFilter::ftAncestor, "!*TForm", TFilter::mkEquals);
  forms->Add(TFilter::ftUnitName, "Main", TFilter::mkBeginsWith);
  list.Add("Aux");
  EXPECT_EQ(list.Add("forms"), nullptr);
  EXPECT_EQ(list.Add(" "), nullptr);

  TMemorySettingsStore store;
  list.Save(store);
  EXPECT_EQ(store.ReadInteger("Class Filters", "Count", -1), 2);
  EXPECT_EQ(store.ReadString("Class Filters", "Name0", ""), "Aux");
  EXPECT_EQ(store.ReadString("Class Filters", "Name1", ""), "Forms");
  EXPECT_EQ(store.ReadInteger("Filter\\Forms", "Match", -1), 1);
  EXPECT_FALSE(store.ReadBool("Filter\\Forms", "ApplyToExternals", true));
  EXPECT_EQ(store.ReadString("Filter\\Forms", "Value0", ""), "!*TForm");
  EXPECT_EQ(store.ReadInteger("Filter\\Forms", "Type0", -1), 1);
  EXPECT_EQ(store.ReadInteger("Filter\\Forms", "Kind1", -1), 1);

  TFilterList back;
  back.Add("Old");
  back.Load(store);
  ASSERT_EQ(back.Count(), 2);
  EXPECT_EQ(back.Find("old"), nullptr);
  TFilterDescription* formsBack = back.Find("FORMS");
  ASSERT_NE(formsBack, nullptr);
  ASSERT_EQ(formsBack->Count(), 2);
  EXPECT_TRUE(formsBack->Items(0)->AnyAncestor);
  EXPECT_EQ(formsBack->Items(0)->GetText(), "!*TForm");
  EXPECT_TRUE(formsBack->ApplyToProject);
  EXPECT_FALSE(formsBack->ApplyToExternals);

  // A removed description takes its section along; a lying count reads what is there.
  back.Remove("Forms");
  back.Save(store);
  EXPECT_FALSE(store.SectionExists("Filter\\Forms"));
  EXPECT_TRUE(store.SectionExists("Filter\\Aux"));
  store.WriteInteger("Class Filters", "Count", 2000000000);
  store.WriteInteger("Filter\\Aux", "Count", 2000000000);
  back.Load(store);
  EXPECT_EQ(back.Count(), 1);
  EXPECT_EQ(back.Items(0)->Count(), 0);
}

}  // namespace
}  // namespace velmora
