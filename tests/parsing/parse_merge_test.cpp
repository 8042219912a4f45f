// Merging parses into a live model: the merged model is the one a direct parse gives,
// a re-parse keeps the objects of what the source still declares, and a stale result is
// dropped.
#include "parsing/parse_merge.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "model/model_text.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

std::string Saved(const TClasslist& list) {
  TMemoryStream out;
  list.SaveToStream(out);
  return out.Data();
}

std::vector<fs::path> SourceInputs() {
  std::vector<fs::path> inputs;
  for (const fs::path& dir : {fs::path(VELMORA_TEST_DATA) / "parsing" / "golden",
                              fs::path(VELMORA_SOURCE_DIR) / "examples"})
    for (const auto& entry : fs::recursive_directory_iterator(dir)) {
      const std::string ext = entry.path().extension().string();
      if (entry.is_regular_file() &&
          (ext == ".h" || ext == ".cpp" || ext == ".pas" || ext == ".inc"))
        inputs.push_back(entry.path());
    }
  return inputs;
}

TEST(ParseMergeTest, MergedModelIsTheModelADirectParseGives) {
  for (const fs::path& input : SourceInputs()) {
    SCOPED_TRACE(input.string());
    const std::string name = input.filename().string();
    const TLanguage language = LanguageOfFile(name);
    const TParseOptions options{.WantPositions = true};
    TClasslist direct;
    TMemoryStream text(LoadSourceText(input.string()));
    ParseSourceText(language, name, text, direct, options, nullptr);

    const TFileParse parse = ParseText(name, language, LoadSourceText(input.string()), options);
    TClasslist merged;
    MergeFileParse(merged, parse, TMergeMode::Replace);
    EXPECT_EQ(DescribeModel(merged), DescribeModel(direct));
    EXPECT_EQ(Saved(merged), Saved(direct));
    MergeFileParse(merged, parse, TMergeMode::Replace);
    EXPECT_EQ(Saved(merged), Saved(direct)) << "merging the same parse again changes nothing";

    TFileParse moving = ParseText(name, language, LoadSourceText(input.string()), options);
    TClasslist moved;
    MergeNewUnitParse(moved, moving);
    EXPECT_EQ(Saved(moved), Saved(direct)) << "routines moved rather than copied";
    EXPECT_EQ(moving.Classes->Routines.Count(), 0);
  }
}

TFileParse Parse(const std::string& unit, const std::string& text) {
  return ParseText(unit, LanguageOfFile(unit), text, {});
}

// Re-parses keep the objects of unchanged classes and members (a view's items stay) and
// free only what the source no longer declares.
TEST(ParseMergeTest, ReParseUpdatesObjectsInPlace) {
  const struct {
    const char* what = "";
    std::string unit = {}, before = {}, after = {};
    std::string cls = {};  // the class that stays
    std::vector<std::string> keptFields = {}, keptMethods = {}, goneFields = {}, goneMethods = {};
    std::string goneClass = {};
  } cases[] = {
      {.what = "C++: a field and a method stay, one of each goes, a class goes",
       .unit = "shapes.h",
       .before = "class TShape { int Sides; int Color; public: void Draw(); void Hide(); };\n"
                 "class TOld {};\n",
       .after = "class TShape { int Sides; long Area; public: void Draw(); int Grow(int); };\n",
       .cls = "TShape",
       .keptFields = {"Sides"},
       .keptMethods = {"Draw"},
       .goneFields = {"Color"},
       .goneMethods = {"Hide"},
       .goneClass = "TOld"},
      {.what = "Pascal: a property stays, a field goes, a changed signature keeps its method",
       .unit = "u.pas",
       .before = "unit u;\ninterface\ntype TDoc = class\n  FName: string;\n  FSize: Integer;\n"
                 "  procedure Save(A: Integer);\n  property Name: string read FName;\nend;\n"
                 "TGone = class end;\nimplementation\nend.\n",
       .after = "unit u;\ninterface\ntype TDoc = class\n  FName: string;\n"
                "  procedure Save(A, B: Integer);\n  property Name: string read FName;\nend;\n"
                "implementation\nend.\n",
       .cls = "TDoc",
       .keptFields = {"FName", "Name"},
       .keptMethods = {"Save"},
       .goneFields = {"FSize"},
       .goneClass = "TGone"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TClasslist model;
    MergeFileParse(model, Parse(c.unit, c.before), TMergeMode::Replace);
    TClassDescription* cls = model.Find(c.cls);
    ASSERT_NE(cls, nullptr);
    std::vector<const void*> fields, methods;
    for (const std::string& f : c.keptFields) fields.push_back(cls->Fields.Find(f));
    for (const std::string& m : c.keptMethods) methods.push_back(cls->Methods.Find(m));

    MergeFileParse(model, Parse(c.unit, c.after), TMergeMode::Replace);
    EXPECT_EQ(model.Find(c.cls), cls) << "the class keeps its object";
    for (size_t i = 0; i < fields.size(); ++i)
      EXPECT_EQ(cls->Fields.Find(c.keptFields[i]), fields[i]) << c.keptFields[i];
    for (size_t i = 0; i < methods.size(); ++i)
      EXPECT_EQ(cls->Methods.Find(c.keptMethods[i]), methods[i]) << c.keptMethods[i];
    for (const std::string& f : c.goneFields) EXPECT_EQ(cls->Fields.Find(f), nullptr) << f;
    for (const std::string& m : c.goneMethods) EXPECT_EQ(cls->Methods.Find(m), nullptr) << m;
    EXPECT_EQ(model.Find(c.goneClass), nullptr);
    // And the result reads as a fresh parse of the new text.
    TClasslist fresh;
    MergeFileParse(fresh, Parse(c.unit, c.after), TMergeMode::Replace);
    EXPECT_EQ(DescribeModel(model), DescribeModel(fresh));
  }
}

TEST(ParseMergeTest, ModesDecideWhatHappensToRecordsNotFoundAgain) {
  const struct {
    TMergeMode mode = TMergeMode::Replace;
    bool oldKept = false, oldValid = false;
  } cases[] = {{.mode = TMergeMode::Replace, .oldKept = false},
               {.mode = TMergeMode::Accumulate, .oldKept = true, .oldValid = true},
               {.mode = TMergeMode::MarkWithoutSweep, .oldKept = true, .oldValid = false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.mode));
    TClasslist model;
    MergeFileParse(model, Parse("a.h", "class TOld {};\n"), TMergeMode::Replace);
    MergeFileParse(model, Parse("a.h", "class TNew {};\n"), c.mode);
    ASSERT_NE(model.Find("TNew"), nullptr);
    const TClassDescription* old = model.Find("TOld");
    ASSERT_EQ(old != nullptr, c.oldKept);
    if (old) {
      EXPECT_EQ(old->Valid, c.oldValid);
    }
  }
}

TEST(ParseMergeTest, ResultRewritesTheRootEntryAndStaleGenerationsAreDropped) {
  TClasslist model;
  TParseMerger merger(model);
  auto result = [](uint64_t generation, const char* cls, std::vector<std::string> reached) {
    TParseResult r;
    r.RootFile = "/p/r.cpp";
    r.Generation = generation;
    r.Files.push_back(
        Parse("/p/r.cpp", std::string("class ") + cls + " {};\nvoid " + cls + "Routine(int);\n"));
    r.Reached = std::move(reached);
    return r;
  };
  EXPECT_TRUE(merger.Merge(result(2, "TTwo", {"/p/a.h", "/p/b.h"})));
  ASSERT_NE(model.Includes.Find("/p/r.cpp"), nullptr);
  EXPECT_EQ(model.Includes.Find("/p/r.cpp")->IncludedNames.Count(), 2);
  ASSERT_EQ(model.Routines.Count(), 1) << "moved in from a unit new to the model";
  EXPECT_EQ(model.Routines.Items(0)->Name, "TTwoRoutine");
  EXPECT_EQ(model.Routines.Items(0)->Owner, &model.Routines);

  EXPECT_FALSE(merger.Merge(result(1, "TOne", {}))) << "older than what was merged";
  EXPECT_NE(model.Find("TTwo"), nullptr);
  EXPECT_EQ(model.Find("TOne"), nullptr);

  TParseResult cancelled = result(5, "TFive", {});
  cancelled.Cancelled = true;
  EXPECT_FALSE(merger.Merge(std::move(cancelled)));
  EXPECT_EQ(merger.MergedGeneration("/p/r.cpp"), 2U);

  EXPECT_TRUE(merger.Merge(result(3, "TThree", {})));
  EXPECT_EQ(model.Find("TTwo"), nullptr) << "the unit's old class is swept";
  ASSERT_EQ(model.Routines.Count(), 1) << "and its old routine";
  EXPECT_EQ(model.Routines.Items(0)->Name, "TThreeRoutine");
  EXPECT_NE(model.Find("TThree"), nullptr);
  EXPECT_EQ(model.Includes.Find("/p/r.cpp"), nullptr) << "nothing reached: no entry";
}

}  // namespace
}  // namespace velmora

namespace velmora {
namespace {

// The merger marks and sweeps through its own index of each unit's records; the model it
// makes must be the one the whole-model mark and sweep make, step by step.
TEST(ParseMergeTest, TheMergersUnitIndexGivesTheWholeModelMarkAndSweep) {
  const struct {
    const char* unit;
    const char* text;
  } steps[] = {
      {"a.h", "class TA { int X; class TIn { int Y; }; };\nclass TB {};\nvoid Run(int);\n"},
      {"b.h", "class TC { void F(); };\nvoid Run(int);\nvoid Run(char);\n"},
      {"a.h", "class TA { int X; int Z; };\nvoid Run(long);\n"},
      {"b.h", "class TB { int MovedHere; };\nclass TC {};\n"},
      {"a.h", "class TD {};\n"},
      {"u.pas",
       "unit u;\ninterface\ntype TP = class procedure Go; end;\nprocedure Free1;\n"
       "implementation\nend.\n"},
      {"U.PAS", "unit u;\ninterface\nprocedure Free2;\nimplementation\nend.\n"},
      {"b.h", ""},
  };
  TClasslist reference, merged;
  TParseMerger merger(merged);
  for (const auto& step : steps) {
    SCOPED_TRACE(std::string(step.unit) + ": " + step.text);
    TParseResult result;
    result.RootFile = step.unit;
    result.Files.push_back(Parse(step.unit, step.text));
    MergeParseResult(reference, result);
    result.Files[0] = Parse(step.unit, step.text);
    ASSERT_TRUE(merger.Merge(std::move(result)));
    EXPECT_EQ(DescribeModel(merged), DescribeModel(reference));
  }
}

}  // namespace
}  // namespace velmora
