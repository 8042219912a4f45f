// The class information and domain information files: exact bytes (golden files and the
// layout spelled out), round trips of a model holding every kind of record, damaged and
// foreign files, and saves that fail without touching the old file.
//
// VELMORA_UPDATE_GOLDEN=1 rewrites the golden files from what the code writes now; do it
// only after a deliberate change of the format, and look at the diff.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "model/class_info_error.h"
#include "model/class_info_file.h"
#include "model/class_info_format.h"
#include "model/class_list.h"
#include "support/stream.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

std::string U32(uint32_t v) {
  std::string s(4, '\0');
  for (int i = 0; i < 4; ++i) s[i] = static_cast<char>(v >> (8 * i));
  return s;
}
std::string Str(const std::string& s) {
  return U32(static_cast<uint32_t>(s.size())) + s;
}

std::string Saved(const TFilesList& files, const TClasslist& classes) {
  TMemoryStream s;
  files.SaveToStream(s);
  classes.SaveToStream(s);
  return s.Data();
}

// Loads `bytes` into fresh lists the way the whole-file load does.
struct Loaded {
  explicit Loaded(const std::string& bytes) : stream(bytes) {}
  void Load() {
    files.LoadFromStream(stream);
    classes.LoadFromStream(stream);
  }
  TMemoryStream stream;
  TFilesList files;
  TClasslist classes;
};

void AddFile(TFilesList& files, TLanguage lang, const char* dir, const char* name, int32_t date) {
  auto f = std::make_unique<TFileDescription>(lang);
  f->Name = name;
  f->Directory = dir;
  f->FileDate = date;
  f->FileFlags = 0x0102;
  files.Add(std::move(f));
}

TParameterList Params(TLanguage lang, std::string_view text) {
  TParameterList list(lang);
  list.Parse(text);
  return list;
}

// Two files, one domain, a C++ class with a field, a property, a method and a nested
// class, a Pascal class, a routine and an include unit.
void FillSmall(TFilesList& files, TClasslist& classes) {
  AddFile(files, C, "C:\\Kiln\\", "Kiln.h", 1000);
  AddFile(files, P, "C:\\Kiln\\", "Glaze.pas", 2000);
  classes.ListString = "Kiln";
  classes.Domains.CreateDomain("Firing")->ClassNames.Add("TKiln");
  TClassDescription* kiln = classes.FindOrAdd("TKiln", C);
  kiln->UnitName = "Kiln.h";
  kiln->SetStart(3, 40);
  kiln->SetEnd(20, 400);
  kiln->Ancestors.Add(TVisibility::Public, "TObject");
  kiln->Fields.FindOrAdd("FTemp", "int", TVisibility::Private);
  TFieldDescription* temp = kiln->Fields.FindOrAdd("Temp", "int", TVisibility::Published);
  temp->SetIsProperty(true);
  temp->Property->ReadSpec = "FTemp";
  kiln->Methods.FindOrAdd("Fire", Params(C, "int hours"), "void", TVisibility::Public,
                          TMethodKind::Procedure);
  kiln->NestedClasses()->FindOrAdd("TShelf", C)->UnitName = "Kiln.h";
  classes.FindOrAdd("TGlaze", P)->UnitName = "Glaze.pas";
  classes.Routines.FindOrAdd("Cool", "Kiln.h", C, Params(C, ""), "", TVisibility::Public,
                             TMethodKind::Procedure);
  classes.Includes.FindOrAdd("Kiln.cpp")->IncludedNames.Add("Kiln.h");
}

// Every kind of record: classes nested two deep, properties with all six specifiers and
// array properties, overloads, directives, routines of both languages, two domains (one
// naming a class that does not exist), include units with and without names.
void FillFull(TFilesList& files, TClasslist& classes) {
  FillSmall(files, classes);
  AddFile(files, C, "/src/", "kiln.h", -1);  // same name as another in another case
  classes.ListString = "full";
  TDomain* tools = classes.Domains.CreateDomain("Tools");
  tools->ClassNames.Add("TTool");
  tools->ClassNames.Add("TMissing");
  TClassDescription* tool = classes.FindOrAdd("TTool", C);
  tool->ClassKind = TClassKind::Template;
  tool->TemplateParams = "class T, int N";
  tool->Guid = "8D5B1F2A-0000-4000-8000-00000000002A";
  tool->Ancestors.Add(TVisibility::Protected, "TKiln");
  tool->Ancestors.Add(TVisibility::Private, "IDispatch");
  for (const char* params : {"int", "char* s, int n = 3", ""}) {
    TMethodDescription* m = tool->Methods.FindOrAdd("Run", Params(C, params), "bool",
                                                    TVisibility::Protected, TMethodKind::Function);
    m->SetDirective(TDirective::Virtual);
    m->SetDirective(TDirective::FastCall);
  }
  TMethodDescription* handler = tool->Methods.FindOrAdd(
      "WMSize", Params(C, "TMessage& Msg"), "void", TVisibility::Private, TMethodKind::Procedure);
  handler->SetDirective(TDirective::Message);
  handler->MessageName = "WM_SIZE";
  tool->Methods.FindOrAdd("~TTool", Params(C, ""), "", TVisibility::Public,
                          TMethodKind::Destructor);
  TFieldDescription* items = tool->Fields.FindOrAdd("Items", "int", TVisibility::Published);
  items->SetIsProperty(true);
  *items->Property = {"int Index", "2", "GetItem", "SetItem", "false", "0"};
  tool->Fields.FindOrAdd("FBuf", "char", TVisibility::Private)->Modifier = "[16]";
  TClassDescription* inner = tool->NestedClasses()->FindOrAdd("TInner", C);
  inner->ClassKind = TClassKind::Struct;
  inner->Fields.FindOrAdd("x", "int", TVisibility::Public);
  TClassDescription* deepest = inner->NestedClasses()->FindOrAdd("TDeepest", P);
  deepest->Methods.FindOrAdd("Go", Params(P, "var A: Integer; const B: string = 'x'"), "Boolean",
                             TVisibility::Public, TMethodKind::Function);
  tool->NestedClasses()->FindOrAdd("IInner", C)->ClassKind = TClassKind::Interface;
  classes.Routines.FindOrAdd("Cool", "Other.h", C, Params(C, "double t"), "int",
                             TVisibility::Public, TMethodKind::Function);
  TProcDescription* init =
      classes.Routines.FindOrAdd("Init", "Glaze.pas", P, Params(P, "X: Integer"), "",
                                 TVisibility::Public, TMethodKind::Procedure);
  init->SetDirective(TDirective::StdCall);
  classes.Includes.FindOrAdd("Kiln.cpp")->IncludedNames.Add("Tool.h");
  classes.Includes.FindOrAdd("Glaze.pas")->IncludedNames.Add("SysUtils");
  classes.Includes.FindOrAdd("Empty.cpp");
}

void CheckGolden(const std::string& name, const std::string& bytes) {
  const std::string path = std::string(VELMORA_TEST_DATA) + "/model/golden/" + name;
  if (const char* update = std::getenv("VELMORA_UPDATE_GOLDEN"); update && *update == '1') {
    std::ofstream(path, std::ios::binary) << bytes;
    return;
  }
  std::string expected;
  ASSERT_NO_THROW(expected = ReadWholeFile(path)) << path << " (VELMORA_UPDATE_GOLDEN=1 makes it)";
  // Offset of the first difference, for a message a person can follow.
  size_t at = 0;
  while (at < bytes.size() && at < expected.size() && bytes[at] == expected[at]) ++at;
  EXPECT_TRUE(bytes == expected) << name << ": first difference at byte " << at << " of "
                                 << bytes.size() << " (golden " << expected.size() << ")";
}

TEST(ClassInfoFileTest, EmptyModelLayoutAndGolden) {
  TFilesList files;
  TClasslist classes;
  classes.ListString = "empty";
  const std::string bytes = Saved(files, classes);
  EXPECT_EQ(bytes, std::string(kClassInfoBanner) + U32(0xF0F1F2F4) + U32(0) + U32(0xF0F1F2F3) +
                       U32(0) + U32(0xF0F1F2F4) + Str("empty") + U32(0) + U32(0) + U32(0));
  CheckGolden("empty.cinfo", bytes);
}

TEST(ClassInfoFileTest, SmallModelGolden) {
  TFilesList files;
  TClasslist classes;
  FillSmall(files, classes);
  CheckGolden("small.cinfo", Saved(files, classes));
}

TEST(ClassInfoFileTest, FullModelRoundTripIsByteIdentical) {
  TFilesList files;
  TClasslist classes;
  FillFull(files, classes);
  const std::string bytes = Saved(files, classes);

  Loaded back(bytes);
  back.Load();
  EXPECT_EQ(back.stream.Remaining(), 0);
  EXPECT_EQ(Saved(back.files, back.classes), bytes);

  EXPECT_EQ(back.files.Count(), 3);
  EXPECT_EQ(back.classes.ListString, "full");
  EXPECT_EQ(back.classes.CountAll(), 7);
  TClassDescription* tool = back.classes.Find("TTool");
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->Methods.Count(), 5);
  EXPECT_EQ(tool->NestedClasses()->Find("TInner")->NestedClasses()->Find("TDeepest")->Language, P);
  // The domains are linked to the classes read after them; a missing class keeps its name.
  TDomain* tools = back.classes.Domains.FindByName("tools");
  ASSERT_NE(tools, nullptr);
  EXPECT_EQ(tool->Domain, tools);
  EXPECT_EQ(tools->Count(), 1);
  EXPECT_TRUE(tools->ContainsName("TMissing"));
  EXPECT_EQ(back.classes.Find("TKiln")->Domain, back.classes.Domains.FindByName("Firing"));
  EXPECT_EQ(back.classes.Routines.Count(), 3);
  EXPECT_EQ(back.classes.Includes.Count(), 3);

  // Loading into lists that already hold a model replaces it.
  TMemoryStream again(bytes);
  back.files.LoadFromStream(again);
  back.classes.LoadFromStream(again);
  EXPECT_EQ(Saved(back.files, back.classes), bytes);
}

TEST(ClassInfoFileTest, CutAnywhereFailsCleanly) {
  TFilesList files;
  TClasslist classes;
  FillFull(files, classes);
  const std::string bytes = Saved(files, classes);
  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    Loaded back(bytes.substr(0, cut));
    try {
      back.Load();
      ADD_FAILURE() << "cut at " << cut << ": loaded";
    } catch (const EClassInfoFileError& e) {
      // Too short for the banner reads as a foreign file; after it, as a damaged one.
      const char* expected = cut < kClassInfoBanner.size() ? kInvalidVersion : kUnexpectedEndOfFile;
      EXPECT_STREQ(e.what(), expected) << "cut at " << cut;
      EXPECT_EQ(e.ErrorKind, TClassInfoErrorKind::NothingUsable) << "cut at " << cut;
    }
  }
}

TEST(ClassInfoFileTest, WrongHeaderOrMarkersSayHowFarTheLoadGot) {
  TFilesList files;
  TClasslist classes;
  FillFull(files, classes);
  const std::string bytes = Saved(files, classes);
  const size_t domainMarker = bytes.find(U32(0xF0F1F2F3));
  const size_t classMarker = bytes.find(U32(0xF0F1F2F4) + Str("full"));
  ASSERT_NE(classMarker, std::string::npos);
  struct Case {
    const char* what;
    size_t at;
    const char* message;
    TClassInfoErrorKind kind;
    int files, domains;
  } cases[] = {
      // clang-format off
      {.what = "banner",        .at = 7,            .message = kInvalidVersion,          .kind = TClassInfoErrorKind::NothingUsable, .files = 0, .domains = 0},
      {.what = "version",       .at = 101,          .message = kInvalidVersion,          .kind = TClassInfoErrorKind::NothingUsable, .files = 0, .domains = 0},
      {.what = "domain marker", .at = domainMarker, .message = kFilesRestored,           .kind = TClassInfoErrorKind::FilesRestored, .files = 3, .domains = 0},
      {.what = "class marker",  .at = classMarker,  .message = kFilesAndDomainsRestored, .kind = TClassInfoErrorKind::DomainsRestored, .files = 3, .domains = 2},
      // clang-format on
  };

  for (const Case& c : cases) {
    std::string damaged = bytes;
    damaged[c.at] ^= 0x5A;
    Loaded back(damaged);
    try {
      back.Load();
      ADD_FAILURE() << c.what << ": loaded";
    } catch (const EClassInfoFileError& e) {
      EXPECT_STREQ(e.what(), c.message) << c.what;
      EXPECT_EQ(e.ErrorKind, c.kind) << c.what;
    }
    EXPECT_EQ(back.files.Count(), c.files) << c.what;
    EXPECT_EQ(back.classes.Domains.Count(), c.domains) << c.what;
    EXPECT_EQ(back.classes.Count(), 0) << c.what;
  }
}

// A scratch directory removed with everything in it at the end of the test.
struct TempDir {
  TempDir() {
    std::string pattern = ::testing::TempDir() + "velmora_cinfo_XXXXXX";
    path = ::mkdtemp(pattern.data());
  }
  ~TempDir() {
    std::error_code ec;
    fs::permissions(path, fs::perms::owner_all, ec);
    fs::remove_all(path, ec);
  }
  std::string operator/(const std::string& name) const { return path + "/" + name; }
  std::string path;
};

TEST(ClassInfoFileTest, WholeFileSaveAndLoad) {
  TempDir dir;
  TFilesList files;
  TClasslist classes;
  FillFull(files, classes);
  const std::string path = dir / "Kiln.cinfo";
  EXPECT_TRUE(SaveClassInfoFileReported(path, files, classes).Ok);
  EXPECT_EQ(ReadWholeFile(path), Saved(files, classes));
  TFilesList filesBack;
  TClasslist classesBack;
  const TModelFileOutcome loaded = LoadClassInfoFileReported(path, filesBack, classesBack);
  EXPECT_TRUE(loaded.Ok) << loaded.Message;
  EXPECT_EQ(Saved(filesBack, classesBack), Saved(files, classes));

  const std::string missing = dir / "none.cinfo";
  EXPECT_EQ(
      LoadClassInfoFileReported(missing, filesBack, classesBack).Message,
      "Cannot load the class information file \"" + missing + "\" because file doesn't exists!");

  EXPECT_EQ(FormatMessage("%s and %s, 100%", {"x"}), "x and , 100%");
  std::ofstream(dir / "short.cinfo", std::ios::binary) << Saved(files, classes).substr(0, 300);
  const TModelFileOutcome cut =
      LoadClassInfoFileReported(dir / "short.cinfo", filesBack, classesBack);
  EXPECT_EQ(cut.ErrorKind, TClassInfoErrorKind::NothingUsable);
  EXPECT_EQ(cut.Message,
            "The class information file \"" + (dir / "short.cinfo") +
                "\" could not be loaded because of the following error: " + kUnexpectedEndOfFile);
}

TEST(ClassInfoFileTest, FailedSaveLeavesTheOldFile) {
  TempDir dir;
  TFilesList files;
  TClasslist classes;
  FillSmall(files, classes);
  const std::string old = "the previous contents";
  struct Case {
    std::string what;
    std::string path;
    bool skip;
  } cases[] = {
      // The temporary name beside it is too long for the file system.
      {.what = "name too long", .path = dir / std::string(250, 'k'), .skip = false},
      // Root writes into read-only directories, so that case only runs for other users.
      {.what = "read-only directory", .path = dir / "ro/Kiln.cinfo", .skip = ::geteuid() == 0},
  };
  fs::create_directory(dir / "ro");
  for (const Case& c : cases) {
    if (c.skip) continue;
    std::ofstream(c.path, std::ios::binary) << old;
    fs::permissions(dir / "ro", fs::perms::owner_read | fs::perms::owner_exec);
    const TModelFileOutcome outcome = SaveClassInfoFileReported(c.path, files, classes);
    fs::permissions(dir / "ro", fs::perms::owner_all);
    EXPECT_FALSE(outcome.Ok) << c.what;
    EXPECT_EQ(outcome.Message.rfind("The class information file \"" + c.path +
                                        "\" could not be saved because of the following error: ",
                                    0),
              0u)
        << c.what << ": " << outcome.Message;
    EXPECT_EQ(ReadWholeFile(c.path), old) << c.what;
  }
  // A directory in the way stays a directory, and no temporary file is left anywhere.
  fs::create_directory(dir / "taken.cinfo");
  EXPECT_FALSE(SaveClassInfoFileReported(dir / "taken.cinfo", files, classes).Ok);
  EXPECT_TRUE(fs::is_directory(dir / "taken.cinfo"));
  int entries = 0;
  for (const auto& e : fs::directory_iterator(dir.path)) entries += e.is_regular_file();
  EXPECT_EQ(entries, 1);  // the 250-character one
}

TEST(DomainFileTest, LayoutRoundTripAndForeignHeaders) {
  TempDir dir;
  TClasslist classes;
  classes.FindOrAdd("TKiln", C);
  TDomain* firing = classes.Domains.CreateDomain("Firing");
  firing->AddClass(classes.Find("TKiln"));
  firing->ClassNames.Add("TLater");
  const std::string path = dir / "Kiln.domain";
  EXPECT_TRUE(SaveDomainFileReported(path, "Kiln", classes.Domains).Ok);
  const std::string header =
      U32(10006) + U32(10006) + U32(79) + Str(std::string(kDomainFileBanner));
  const std::string bytes = ReadWholeFile(path);
  EXPECT_EQ(bytes, header + U32(1) + Str("Firing") + Str("Firing") + std::string(1, '\1') + U32(2) +
                       Str("TKiln") + Str("TLater"));

  TClasslist other;
  TClassDescription* kiln = other.FindOrAdd("TKiln", C);
  EXPECT_TRUE(other.Domains.LoadFromFile(path));
  ASSERT_EQ(other.Domains.Count(), 1);
  EXPECT_EQ(kiln->Domain, other.Domains.Items(0));

  struct Case {
    const char* what;
    size_t at;  // byte changed; npos: the file cut after 10 bytes
  } cases[] = {{"magic 1", 0},       {"magic 2", 4},      {"banner length", 8},
               {"banner count", 12}, {"banner text", 40}, {"too short", std::string::npos}};
  for (const Case& c : cases) {
    std::string damaged = bytes;
    if (c.at == std::string::npos)
      damaged.resize(10);
    else
      damaged[c.at] ^= 0x21;
    std::ofstream(path, std::ios::binary | std::ios::trunc) << damaged;
    const TModelFileOutcome outcome = LoadDomainFileReported(path, "Kiln", other.Domains);
    EXPECT_TRUE(outcome.Ok) << c.what << ": " << outcome.Message;
    EXPECT_EQ(other.Domains.Count(), 1) << c.what;  // untouched
    EXPECT_EQ(kiln->Domain, other.Domains.Items(0)) << c.what;
  }

  // A good header over a damaged list is an error, reported with the project's name.
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes.substr(0, bytes.size() - 3);
  EXPECT_EQ(LoadDomainFileReported(path, "Kiln", other.Domains).Message,
            std::string("The domain information file for project Kiln could not be loaded "
                        "because of the following error:\r\n") +
                kUnexpectedEndOfFile);
}

}  // namespace
}  // namespace velmora
