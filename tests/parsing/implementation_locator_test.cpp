// The locating routines: the finder chosen by the member's language, overloads told apart
// only where the holding list has a twin, and files read through the source-text reader.
#include <gtest/gtest.h>

#include <unistd.h>
#include <filesystem>
#include <fstream>

#include <map>

#include "model/class_list.h"
#include "parsing/implementation_locator.h"

namespace velmora {
namespace {

constexpr TLanguage C = TLanguage::Cpp;
constexpr TLanguage P = TLanguage::Pascal;

TParameterList Params(TLanguage language, std::string_view text) {
  TParameterList list(language);
  list.Parse(text);
  return list;
}

TMethodDescription* AddMethod(TClassDescription& cls, std::string_view name,
                              std::string_view params) {
  return cls.Methods.FindOrAdd(name, Params(cls.Language, params), "", TVisibility::Public,
                               TMethodKind::Procedure);
}

const std::string kSource =
    "void A::f(int i)\r\n{\r\n}\r\n"    // 1
    "void A::f(char *s)\r\n{\r\n}\r\n"  // 4
    "void g(int i) {}\r\n"              // 7
    "void g(char *s) {}\r\n";           // 8

TEST(ImplementationLocatorTest, OverloadsAreToldApartOnlyWhenTheListHasATwin) {
  TClasslist classes;
  TClassDescription* a = classes.FindOrAdd("A", C);
  TMethodDescription* byInt = AddMethod(*a, "f", "int");
  TMethodDescription* byText = AddMethod(*a, "f", "char*");
  TClassDescription* single = classes.FindOrAdd("A2", C);
  TMethodDescription* only = AddMethod(*single, "f", "char*");
  TProcDescription* gText = classes.Routines.FindOrAdd("g", "x.h", C, Params(C, "char*"), "",
                                                       TVisibility::Public, TMethodKind::Procedure);
  TProcDescription* gInt = classes.Routines.FindOrAdd("g", "x.h", C, Params(C, "int"), "",
                                                      TVisibility::Public, TMethodKind::Procedure);

  struct Case {
    const char* name;
    const TClassDescription* cls;
    const TMethodDescription* member;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "first overload", .cls = a, .member = byInt, .line = 1},
      {.name = "second overload", .cls = a, .member = byText, .line = 4},
      // Only one f in A2's list: the parameters are not looked at, but the class name is
      // (the text has no A2::f).
      {.name = "no twin, other class", .cls = single, .member = only, .line = -1},
      {.name = "routine overload", .cls = nullptr, .member = gText, .line = 8},
      {.name = "other routine overload", .cls = nullptr, .member = gInt, .line = 7},
      {.name = "method without its class", .cls = nullptr, .member = byInt, .line = -1},
  };
  for (const Case& c : cases) {
    int32_t line = 99;
    EXPECT_EQ(LocateImplementationLine(kSource, false, c.cls, line, *c.member), c.line != -1)
        << c.name;
    EXPECT_EQ(line, c.line) << c.name;
  }

  // Without a twin any parameters match: the first A::f in the file.
  TClassDescription* lone = classes.FindOrAdd("Lone", C);
  TMethodDescription* stale = AddMethod(*lone, "f", "double");
  lone->Name = "A";
  int32_t line = -1;
  EXPECT_TRUE(LocateImplementationLine(kSource, false, lone, line, *stale));
  EXPECT_EQ(line, 1);
  int32_t offset = -1;
  EXPECT_TRUE(LocateImplementationOffset(kSource, false, a, offset, *byText));
  EXPECT_EQ(offset, static_cast<int32_t>(kSource.find("void A::f(char")));

  byText->SetStart(42, 420);
  EXPECT_TRUE(LocateImplementationLine(kSource, true, a, line, *byText));
  EXPECT_EQ(line, 42);
  EXPECT_TRUE(LocateImplementationOffset(kSource, true, a, offset, *byText));
  EXPECT_EQ(offset, 420);
}

// The tokens of the last text are kept between lookups: a text of the same size with
// other content must be searched anew.
TEST(ImplementationLocatorTest, AChangedTextIsSearchedAnew) {
  TClasslist classes;
  TClassDescription* a = classes.FindOrAdd("A", C);
  TMethodDescription* f = AddMethod(*a, "f", "");
  TMethodDescription* g = AddMethod(*a, "g", "");
  const std::string first = "void A::f() {}\r\nvoid A::g() {}\r\n";
  const std::string second = "void A::g() {}\r\nvoid A::f() {}\r\n";
  ASSERT_EQ(first.size(), second.size());
  struct Step {
    const std::string& text;
    const TMethodDescription* member;
    int32_t line;
  };
  const Step steps[] = {
      {first, f, 1}, {first, g, 2}, {second, f, 2}, {second, g, 1}, {first, f, 1}};
  for (const Step& s : steps) {
    int32_t line = -1;
    EXPECT_TRUE(LocateImplementationLine(s.text, false, a, line, *s.member));
    EXPECT_EQ(line, s.line) << s.member->Name << " in " << s.text;
  }
}

TEST(ImplementationLocatorTest, PascalMembers) {
  const std::string unit =
      "unit U;\r\ninterface\r\nprocedure Run;\r\nimplementation\r\n"
      "procedure TFoo.Paint;\r\nbegin\r\nend;\r\nprocedure Run;\r\nbegin\r\nend;\r\nend.\r\n";
  TClasslist classes;
  TClassDescription* foo = classes.FindOrAdd("TFoo", P);
  TMethodDescription* paint = AddMethod(*foo, "paint", "");
  TProcDescription* run = classes.Routines.FindOrAdd("RUN", "u.pas", P, Params(P, ""), "",
                                                     TVisibility::Public, TMethodKind::Procedure);
  int32_t line = -1;
  EXPECT_TRUE(LocateImplementationLine(unit, false, foo, line, *paint));
  EXPECT_EQ(line, 5);
  EXPECT_TRUE(LocateImplementationLine(unit, false, nullptr, line, *run));
  EXPECT_EQ(line, 8);
}

TEST(ImplementationLocatorTest, FilesAreReadThroughTheReader) {
  TClasslist classes;
  TClassDescription* a = classes.FindOrAdd("A", C);
  TMethodDescription* f = AddMethod(*a, "f", "int");
  // What an editor would hold: the header unsaved, the source with the body.
  std::map<std::string, std::string> buffers = {
      {"a.h", "class A {\r\n  void f(int);\r\n};\r\n"},
      {"a.cpp", "\r\n\r\nvoid A::f(int i)\r\n{\r\n}\r\n"},
  };
  int reads = 0;
  const TSourceTextReader reader = [&](const std::string& path) -> std::optional<std::string> {
    ++reads;
    auto it = buffers.find(path);
    if (it == buffers.end()) return std::nullopt;
    return it->second;
  };

  std::string fileName = "a.h";
  int32_t line = -1;
  EXPECT_TRUE(LocateImplementationInFiles(fileName, {"missing.cpp", "a.cpp", "never.cpp"}, false,
                                          line, *f, a, reader));
  EXPECT_EQ(fileName, "a.cpp");
  EXPECT_EQ(line, 3);
  EXPECT_EQ(reads, 3);  // a.h, missing.cpp, a.cpp: the first file that has it wins

  fileName = "a.h";
  buffers["a.cpp"] = "// gone\r\n";
  EXPECT_FALSE(LocateImplementationInFiles(fileName, {"a.cpp"}, false, line, *f, a, reader));
  EXPECT_EQ(fileName, "a.h");
  EXPECT_EQ(line, -1);

  f->SetStart(7, 70);
  EXPECT_TRUE(LocateImplementationInFiles(fileName, {}, true, line, *f, a, reader));
  EXPECT_EQ(line, 7);
}

TEST(ImplementationLocatorTest, TheDefaultReaderLoadsTheFileInBufferForm) {
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() / ("velmora-locator-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "unit1.cpp").string();
  {
    // LF line ends: a `//` comment would run to the end of the file if the text were not
    // converted on loading.
    std::ofstream out(path, std::ios::binary);
    out << "// first\nint x;\nvoid A::f(int i)\n{\n}\n";
  }
  TClasslist classes;
  TClassDescription* a = classes.FindOrAdd("A", C);
  TMethodDescription* f = AddMethod(*a, "f", "int");
  int32_t line = -1;
  EXPECT_TRUE(LocateImplementationInFile(path, a, *f, line));
  EXPECT_EQ(line, 3);
  EXPECT_FALSE(LocateImplementationInFile((dir / "none.cpp").string(), a, *f, line));
  EXPECT_EQ(line, -1);
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace velmora
