// Code markers: their text in every comment style, their reading in any style and letter
// case, finding them in C++ and Pascal files, and the line a new method's implementation
// goes to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codegen/code_markers.h"
#include "codegen/marker_position_finder.h"
#include "model/class_list.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

constexpr TLanguage P = TLanguage::Pascal;
constexpr TLanguage C = TLanguage::Cpp;

TEST(CodeMarkersTest, MarkerText) {
  struct Case {
    int kind;
    int style;
    std::string argument;
    std::string expected;
  };
  const Case cases[] = {
      {mkInsertEnd, mcsCppLine, "", "//Marker(Insert_End)"},
      {mkClassMethod, mcsCppLine, "TFoo", "//ClassMarker_Method(TFoo)"},
      {mkMethodMarker, mcsCppLine, "TFoo.Bar", "//Method_Marker(TFoo.Bar)"},
      {mkDescBegin, mcsCppLine, "TFoo.Bar", "//VL_Desc_Begin(TFoo.Bar)"},
      {mkDescEnd, mcsCppLine, "ignored", "//VL_Desc_End"},
      {mkDescInclude, mcsCppBlock, "x", "/*VL_Desc_Include(x)*/"},
      {mkInsertEnd, mcsPascalBrace, "", "{Marker(Insert_End)}"},
      {mkClassMethod, mcsPascalParen, "TFoo", "(*ClassMarker_Method(TFoo)*)"},
      {mkClassMethod, mcsPascalLine, "TFoo", "//ClassMarker_Method(TFoo)"},
      {mkNone, mcsCppLine, "", ""},
      {7, mcsCppLine, "", ""},
      {mkInsertEnd, 5, "", ""},
      {mkInsertEnd, -1, "", ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MarkerText(c.kind, c.style, c.argument), c.expected)
        << "kind " << c.kind << " style " << c.style;
  }
}

TEST(CodeMarkersTest, ClassifyComment) {
  struct Case {
    std::string comment;
    int kind;
    std::string argument = "";
  };
  const Case cases[] = {
      {"//Marker(Insert_End)\r\n", mkInsertEnd},
      {"{ marker(insert_end) }", mkInsertEnd},
      {"(*MARKER(INSERT_END)*)", mkInsertEnd},
      {"/* Marker(Insert_End) */", mkInsertEnd},
      {"// Marker(Insert_End) here", mkNone},
      {"(* ClassMarker_Method( TFoo ) *)", mkClassMethod, "TFoo"},
      {"{classmarker_method(TFoo)}", mkClassMethod, "TFoo"},
      {"/*Method_Marker(TFoo.Bar)*/", mkMethodMarker, "TFoo.Bar"},
      {"//method_marker (TFoo.Bar)\r\n", mkMethodMarker, "TFoo.Bar"},
      {"// VL_Desc_Begin(TFoo.Bar)", mkDescBegin, "TFoo.Bar"},
      {"//VL_Desc_End", mkDescEnd},
      {"{ vl_desc_end }", mkDescEnd},
      {"//VL_Desc_End more", mkNone},
      {"{VL_Desc_Include(x)}", mkDescInclude, "x"},
      {"//VL_Desc_Include", mkDescInclude, ""},
      {"// ClassMarker_Method without brackets", mkClassMethod, "without brackets"},
      {"/* unclosed Method_Marker(A.B)", mkNone},
      {"/* Method_Marker(A.B)", mkMethodMarker, "A.B"},
      {"// just a comment", mkNone},
      {"{}", mkNone},
      {"", mkNone},
  };
  for (const Case& c : cases) {
    const TMarkerClass got = ClassifyComment(c.comment);
    EXPECT_EQ(got.Kind, c.kind) << c.comment;
    EXPECT_EQ(got.Argument, c.argument) << c.comment;
  }
}

TEST(CodeMarkersTest, EveryMarkerReadsBackInEveryStyle) {
  for (int kind = mkInsertEnd; kind <= mkDescInclude; ++kind) {
    for (int style = mcsPascalLine; style <= mcsCppBlock; ++style) {
      const std::string argument = MarkerHasArgument(kind) ? "TFoo.Bar" : "";
      const std::string text = MarkerText(kind, style, argument);
      EXPECT_EQ(ClassifyComment(text), (TMarkerClass{kind, argument})) << text;
    }
  }
}

TEST(CodeMarkersTest, StyleForSetting) {
  EXPECT_EQ(MarkerStyleForSetting(P, 2), mcsPascalBrace);
  EXPECT_EQ(MarkerStyleForSetting(P, 3), mcsPascalLine);
  EXPECT_EQ(MarkerStyleForSetting(C, 4), mcsCppBlock);
  EXPECT_EQ(MarkerStyleForSetting(C, 1), mcsCppBlock);
  EXPECT_EQ(MarkerStyleForSetting(C, 0), mcsCppLine);
  EXPECT_EQ(MarkerStyleForSetting(C, 9), mcsCppLine);
}

const char* const kCppFile =
    "#include \"foo.h\"\n"                      // 1
    "char* s = \"//Marker(Insert_End)\";\n"     // 2: in a string, no marker
    "void TFoo::A() {}\n"                       // 3
    "//Method_Marker(TFoo.C)\n"                 // 4
    "void TFoo::C() {}\n"                       // 5
    "/* ClassMarker_Method(TBar) */\n"          // 6
    "/*\n  more\n*/\n"                          // 7..9
    "{ int x; } // ClassMarker_Method(tfoo)\n"  // 10
    "//Marker(Insert_End)\n";                   // 11

TEST(MarkerPositionFinderTest, NextAndFind) {
  const std::string text = ToBufferForm(kCppFile);
  TMarkerPositionFinder finder(C, text);
  std::vector<std::pair<int, int32_t>> seen;
  for (TMarker m = finder.NextMarker(); m.Line != -1; m = finder.NextMarker()) {
    seen.emplace_back(m.Kind, m.Line);
    EXPECT_EQ(finder.LastLine(), m.Line);
  }
  const std::vector<std::pair<int, int32_t>> expected = {
      {mkMethodMarker, 4}, {mkClassMethod, 6}, {mkClassMethod, 10}, {mkInsertEnd, 11}};
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(finder.LastLine(), -1);

  EXPECT_EQ(TMarkerPositionFinder::FindMarker(C, text, mkClassMethod, "TFOO"), 10);
  EXPECT_EQ(TMarkerPositionFinder::FindMarker(C, text, mkClassMethod), 6);
  EXPECT_EQ(TMarkerPositionFinder::FindMarker(C, text, mkDescBegin), -1);
}

TEST(MarkerPositionFinderTest, PascalCommentsOnly) {
  const std::string unit = ToBufferForm(
      "unit U;\n"                            // 1
      "{$DEFINE Marker(Insert_End)}\n"       // 2: a directive, not a comment
      "const S = '{Marker(Insert_End)}';\n"  // 3: a string
      "(* ClassMarker_Method(TFoo) *)\n"     // 4
      "{\n  VL_Desc_Begin(TFoo.Bar)\n}\n"    // 5..7: the comment's first line
      "// vl_desc_end\n"                     // 8
      "{Marker(Insert_End)}\n");             // 9
  TMarkerPositionFinder finder(P, unit);
  std::vector<std::pair<int, int32_t>> seen;
  for (TMarker m = finder.NextMarker(); m.Line != -1; m = finder.NextMarker()) {
    seen.emplace_back(m.Kind, m.Line);
  }
  const std::vector<std::pair<int, int32_t>> expected = {
      {mkClassMethod, 4}, {mkDescBegin, 5}, {mkDescEnd, 8}, {mkInsertEnd, 9}};
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(TMarkerPositionFinder::FindMarker(P, unit, mkDescBegin, "tfoo.bar"), 5);
  EXPECT_EQ(TMarkerPositionFinder::FindMarker(P, unit, mkDescBegin, "TFoo"), -1);
}

TEST(MarkerPositionFinderTest, MethodImplementationLineFromMarkers) {
  const std::string text = ToBufferForm(kCppFile);
  struct Case {
    const char* name;
    std::string cls;
    std::string method;
    bool ordered;
    int32_t line;
    bool isMethodMarker;
  };
  const Case cases[] = {
      {.name = "class marker before the insert end",
       .cls = "TFoo",
       .method = "B",
       .ordered = false,
       .line = 10,
       .isMethodMarker = false},
      {.name = "other class's marker passed over: insert end",
       .cls = "TBaz",
       .method = "B",
       .ordered = false,
       .line = 11,
       .isMethodMarker = false},
      {.name = "ordered: before the next method",
       .cls = "TFoo",
       .method = "B",
       .ordered = true,
       .line = 4,
       .isMethodMarker = true},
      {.name = "ordered: the same name sorts at",
       .cls = "TFoo",
       .method = "c",
       .ordered = true,
       .line = 4,
       .isMethodMarker = true},
      {.name = "ordered: sorts after every method marker",
       .cls = "TFoo",
       .method = "D",
       .ordered = true,
       .line = 10,
       .isMethodMarker = false},
      {.name = "its own class marker first",
       .cls = "TBar",
       .method = "X",
       .ordered = true,
       .line = 6,
       .isMethodMarker = false},
  };
  for (const Case& c : cases) {
    bool isMethodMarker = !c.isMethodMarker;
    EXPECT_EQ(TMarkerPositionFinder::FindMethodImplementationLine(C, text, c.cls, c.method,
                                                                  c.ordered, &isMethodMarker),
              c.line)
        << c.name;
    EXPECT_EQ(isMethodMarker, c.isMethodMarker) << c.name;
  }
  const std::string bare = ToBufferForm("void TFoo::A() {}\n");
  EXPECT_EQ(TMarkerPositionFinder::FindMethodImplementationLine(C, bare, "TFoo", "B", true), -1);
}

TEST(MarkerPositionFinderTest, NewMethodImplementationLine) {
  const std::string unit = ToBufferForm(
      "unit U;\n"                             // 1
      "interface\n"                           // 2
      "implementation\n"                      // 3
      "procedure TFoo.Alpha;\nbegin\nend;\n"  // 4..6
      "procedure TFoo.Delta;\nbegin\nend;\n"  // 7..9
      "{ClassMarker_Method(TFoo)}\n"          // 10
      "initialization\n"                      // 11
      "end.\n");                              // 12
  const std::string noMarker = ToBufferForm(
      "unit U;\ninterface\nimplementation\n"
      "procedure TFoo.Alpha;\nbegin\nend;\n"  // 4..6
      "procedure TFoo.Delta;\nbegin\nend;\n"  // 7..9
      "end.\n");                              // 10
  const std::string methodMarker = ToBufferForm(
      "unit U;\ninterface\nimplementation\n"
      "procedure TFoo.Alpha;\nbegin\nend;\n"  // 4..6
      "// Method_Marker(TFoo.Beta)\n"         // 7
      "procedure TFoo.Beta;\nbegin\nend;\n"   // 8..10
      "procedure TFoo.Delta;\nbegin\nend;\n"  // 11..13
      "end.\n");
  TClasslist classes;
  TClassDescription* foo = classes.FindOrAdd("TFoo", P);
  for (const char* name : {"Alpha", "Beta", "Delta"}) {
    foo->Methods.FindOrAdd(name, TParameterList(P), "", TVisibility::Public,
                           TMethodKind::Procedure);
  }
  TClassDescription* cfoo = classes.FindOrAdd("TFoo", C);
  struct Case {
    const char* name;
    TLanguage language;
    std::string text;
    const TClassDescription& cls;
    std::string method;
    bool ordered;
    int32_t line;
  };
  const Case cases[] = {
      {.name = "marker",
       .language = P,
       .text = unit,
       .cls = *foo,
       .method = "Charlie",
       .ordered = false,
       .line = 10},
      {.name = "ordered: the next method comes before the marker",
       .language = P,
       .text = unit,
       .cls = *foo,
       .method = "Charlie",
       .ordered = true,
       .line = 7},
      {.name = "ordered, no marker",
       .language = P,
       .text = noMarker,
       .cls = *foo,
       .method = "Beta",
       .ordered = true,
       .line = 7},
      {.name = "ordered, nothing after: unit end",
       .language = P,
       .text = noMarker,
       .cls = *foo,
       .method = "Zulu",
       .ordered = true,
       .line = 10},
      {.name = "not ordered, no marker: unit end",
       .language = P,
       .text = noMarker,
       .cls = *foo,
       .method = "Beta",
       .ordered = false,
       .line = 10},
      {.name = "a method marker is taken as it is",
       .language = P,
       .text = methodMarker,
       .cls = *foo,
       .method = "Bacon",
       .ordered = true,
       .line = 7},
      {.name = "C++ without a marker: no place",
       .language = C,
       .text = ToBufferForm("void TFoo::A() {}\n"),
       .cls = *cfoo,
       .method = "B",
       .ordered = true,
       .line = -1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MethodImplementationLine(c.language, c.text, c.cls, c.method, c.ordered), c.line)
        << c.name;
  }
}

}  // namespace
}  // namespace velmora
