// Saving and loading the records: round trips, the exact bytes of one class, and damaged
// input (cut anywhere, absurd counts, absurd nesting) failing with the file error.
#include <gtest/gtest.h>

#include <string>

#include "model/class_info_error.h"
#include "model/class_list.h"
#include "support/stream.h"

namespace velmora {
namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

template <class T>
std::string Saved(const T& record) {
  TMemoryStream s;
  record.SaveToStream(s);
  return s.Data();
}

// Little-endian bytes spelled out independently of the stream writer.
std::string U8(unsigned v) {
  return std::string(1, static_cast<char>(v));
}
std::string U16(unsigned v) {
  return U8(v & 0xFF) + U8(v >> 8);
}
std::string U32(uint32_t v) {
  return U16(v & 0xFFFF) + U16(v >> 16);
}
std::string Str(const std::string& s) {
  return U32(static_cast<uint32_t>(s.size())) + s;
}

// The class list format of nested lists (count, then language byte and class each), which
// a top-level list also uses for its classes.
std::string SavedClasses(const TCommonClassList& list) {
  TMemoryStream s;
  list.TCommonClassList::SaveToStream(s);
  return s.Data();
}

// A C++ class with every kind of content, including a Pascal class nested in it.
void Fill(TClassDescription& cls) {
  cls.Name = "TForm1";
  cls.SetStart(10, 200);
  cls.SetEnd(40, 900);
  cls.Ancestors.Add(TVisibility::Public, "TForm");
  cls.Ancestors.Add(TVisibility::Protected, "IFoo");
  cls.UnitName = "Unit1.h";
  cls.ClassKind = TClassKind::Template;
  cls.TemplateParams = "class T";
  cls.Guid = "00000000-0000-0000-C000-000000000046";
  TParameterList params(C);
  params.Parse("TObject* Sender, int a[2] = 5");
  TMethodDescription* m = cls.Methods.FindOrAdd("Click", params, "void", TVisibility::Published,
                                                TMethodKind::Procedure);
  m->SetDirective(TDirective::FastCall);
  m->SetDirective(TDirective::Overload);
  m->MessageName = "WM_SIZE";
  cls.Methods.FindOrAdd("Click", TParameterList(C), "void", TVisibility::Private,
                        TMethodKind::Procedure);
  TFieldDescription* f = cls.Fields.FindOrAdd("FCount", "int", TVisibility::Private);
  f->Modifier = "[3]";
  TFieldDescription* p = cls.Fields.FindOrAdd("Count", "int", TVisibility::Published);
  p->SetIsProperty(true);
  *p->Property = {"int i", "1", "FCount", "SetCount", "true", "0"};
  cls.NestedClasses()
      ->FindOrAdd("TInner", P)
      ->Fields.FindOrAdd("X", "Integer", TVisibility::Public);
}

TEST(RecordsTest, ClassRoundTripKeepsEverythingAndLinksOwners) {
  TClasslist list;
  Fill(*list.FindOrAdd("TForm1", C));
  const std::string bytes = SavedClasses(list);

  TClasslist loaded;
  TMemoryStream in(bytes);
  loaded.TCommonClassList::LoadFromStream(in);
  EXPECT_EQ(in.Remaining(), 0);
  EXPECT_EQ(SavedClasses(loaded), bytes);

  TClassDescription* cls = loaded.Find("TForm1");
  ASSERT_NE(cls, nullptr);
  EXPECT_EQ(cls->OwnerList, &loaded);
  EXPECT_EQ(cls->EndOffset, 900);
  EXPECT_EQ(cls->GetHeader(), "template <class T> class TForm1 : public TForm, protected IFoo");
  ASSERT_EQ(cls->Methods.Count(), 2);
  EXPECT_EQ(cls->Methods.Items(0)->GetOwnerClass(), cls);
  EXPECT_EQ(cls->Methods.Items(0)->GetDeclaration(0),
            "void __fastcall Click(TObject* Sender, int a[2] = 5);");
  ASSERT_EQ(cls->Fields.Count(), 2);
  EXPECT_EQ(cls->Fields.Items(1)->OwnerClass, cls);
  EXPECT_EQ(cls->Fields.Items(0)->GetDisplayText(toWithType), "int FCount[3]");
  EXPECT_EQ(*cls->Fields.Items(1)->Property,
            (TPropertyDescription{"int i", "1", "FCount", "SetCount", "true", "0"}));
  TClassDescription* inner = cls->NestedClasses()->Find("TInner");
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->Language, P);
  EXPECT_EQ(inner->DefaultAncestor, "TObject");
  EXPECT_EQ(inner->NestedClassesIfAny(), nullptr);
  EXPECT_EQ(cls->NestedClasses()->ParentList, &loaded);
  EXPECT_EQ(cls->NestedClasses()->RootList, &loaded);
}

TEST(RecordsTest, SmallClassRecordBytes) {
  TClassDescription cls(nullptr, P);
  cls.Name = "TA";
  cls.SetStart(1, 2);
  cls.SetEnd(3, 4);
  cls.UnitName = "u";
  TMethodDescription* m = cls.Methods.FindOrAdd("M", TParameterList(P), "R", TVisibility::Published,
                                                TMethodKind::Function);
  m->Parameters.Add("X", "T", "var");
  m->Directives = 0x8001;
  TFieldDescription* f = cls.Fields.FindOrAdd("F", "Integer", TVisibility::Private);
  f->Modifier = "class var";
  TFieldDescription* p = cls.Fields.FindOrAdd("P", "I", TVisibility::Protected);
  p->SetIsProperty(true);
  p->Property->ReadSpec = "FP";
  const std::string none = U32(0xFFFFFFFF);
  const std::string expected =
      Str("TA") + U8(0) + U32(1) + U32(2) + U32(3) + U32(4)  // code object
      + U32(0) + Str("u") + U8(0) + Str("") + Str("")        // ancestors .. second string
      + U32(1)                                               // methods
      + Str("M") + U8(0) + none + none + none + none + U8(1) + U8(3) + U16(0x8001) + Str("R") +
      Str("") + U32(1) + Str("X") + Str("var") + Str("T") + Str("") +
      U32(2)  // fields: Modifier before FieldType, specifiers only for the property
      + Str("F") + U8(0) + none + none + none + none + U8(1) + U8(0) + Str("class var") +
      Str("Integer") + Str("P") + U8(0) + none + none + none + none + U8(2) + U8(1) + Str("") +
      Str("") + Str("FP") + Str("") + Str("") + Str("") + Str("") + Str("I") +
      U8(0);  // no nested classes
  EXPECT_EQ(Saved(cls), expected);
}

TEST(RecordsTest, OtherRecordsRoundTrip) {
  TFileDescription file(C);
  file.Name = "Unit1.cpp";
  file.Directory = "/src/";
  file.FileDate = 12345;
  file.FileFlags = 0xBEEF;
  TFileDescription fileBack(P);
  TMemoryStream fs(Saved(file));
  fileBack.LoadFromStream(fs);
  EXPECT_EQ(Saved(fileBack), Saved(file));
  EXPECT_EQ(fileBack.FullName(), "/src/Unit1.cpp");
  EXPECT_EQ(fileBack.Language, C);

  TRoutineList routines;
  routines.FindOrAdd("f", "a.h", C, TParameterList(C), "int", TVisibility::Public,
                     TMethodKind::Function);
  routines.FindOrAdd("Init", "u.pas", P, TParameterList(P), "", TVisibility::Public,
                     TMethodKind::Procedure);
  TRoutineList routinesBack;
  TMemoryStream rs(Saved(routines));
  routinesBack.LoadFromStream(rs);
  EXPECT_EQ(Saved(routinesBack), Saved(routines));
  EXPECT_EQ(routinesBack.Items(0)->Language, P);
  EXPECT_EQ(routinesBack.Items(1)->FileName, "a.h");
  EXPECT_EQ(routinesBack.Items(1)->Owner, &routinesBack);

  TIncludeFilesList includes;
  includes.FindOrAdd("main.cpp")->IncludedNames.Add("a.h");
  includes.FindOrAdd("main.cpp")->IncludedNames.Add("b.h");
  includes.FindOrAdd("empty.cpp");
  TIncludeFilesList includesBack;
  includesBack.FindOrAdd("stale.cpp");
  TMemoryStream is(Saved(includes));
  includesBack.LoadFromStream(is);
  EXPECT_EQ(Saved(includesBack), Saved(includes));
  EXPECT_EQ(includesBack.Find("stale.cpp"), nullptr);
  EXPECT_EQ(Saved(includes), U32(2) + Str("main.cpp") + U32(2) + Str("a.h") + Str("b.h") +
                                 Str("empty.cpp") + U32(0));
}

void ExpectUnexpectedEnd(const std::string& bytes, const std::string& what) {
  TClasslist list;
  TMemoryStream in(bytes);
  try {
    list.TCommonClassList::LoadFromStream(in);
    ADD_FAILURE() << what << ": no error";
  } catch (const EClassInfoFileError& e) {
    EXPECT_EQ(e.ErrorKind, TClassInfoErrorKind::NothingUsable) << what;
    EXPECT_STREQ(e.what(), kUnexpectedEndOfFile) << what;
  }
}

TEST(RecordsTest, CutAnywhereFailsWithUnexpectedEnd) {
  TClasslist list;
  Fill(*list.FindOrAdd("TForm1", C));
  const std::string bytes = SavedClasses(list);
  for (size_t cut = 0; cut < bytes.size(); ++cut)
    ExpectUnexpectedEnd(bytes.substr(0, cut), "cut at " + std::to_string(cut));
}

TEST(RecordsTest, AbsurdCountsFailWithoutHugeAllocations) {
  // One class whose name claims 2 GB, then one whose method count claims 4 billion.
  ExpectUnexpectedEnd(U32(1) + U8(1) + U32(0x7FFFFFFF) + "TA", "name count");
  TClassDescription cls(nullptr, C);
  cls.Name = "T";
  std::string bytes = Saved(cls);
  const size_t methodCount = 4 + 1 + 1 + 16 + 4 + 4 + 1 + 4 + 4;  // up to the method count
  ASSERT_EQ(bytes.substr(methodCount, 4), U32(0));
  bytes.replace(methodCount, 4, U32(0xFFFFFFFF));
  ExpectUnexpectedEnd(U32(1) + U8(1) + bytes, "method count");
}

TEST(RecordsTest, AbsurdNestingIsRefused) {
  TClasslist list;
  TClassDescription* cls = list.FindOrAdd("T0", C);
  for (int depth = 1; depth <= 300; ++depth)
    cls = cls->NestedClasses()->FindOrAdd("T" + std::to_string(depth), C);
  TClasslist loaded;
  TMemoryStream in(SavedClasses(list));
  try {
    loaded.TCommonClassList::LoadFromStream(in);
    ADD_FAILURE() << "no error";
  } catch (const EClassInfoFileError& e) {
    EXPECT_EQ(e.ErrorKind, TClassInfoErrorKind::NothingUsable);
  }
}

}  // namespace
}  // namespace velmora
