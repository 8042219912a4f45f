// `velmora goto` and the add-member commands run on a small project folder: the lines
// printed, the files written (in their own line-end style) or shown as a diff, and a
// refused or failed command that leaves every file as it was.
#include <gtest/gtest.h>

#include "catalogue/catalogue_support.h"

namespace velmora {
namespace {

using namespace velmora::catalogue;
namespace fs = std::filesystem;

constexpr const char* kHeader =
    "class TShape\r\n{\r\npublic:\r\n    int Area(int Scale);\r\n    int Area(double "
    "Scale);\r\n};\r\n";
constexpr const char* kSource =
    "#include \"shape.h\"\r\n\r\nint TShape::Area(int Scale)\r\n{\r\n    return 1;\r\n}\r\n\r\n"
    "int TShape::Area(double Scale)\r\n{\r\n    return 2;\r\n}\r\n";
constexpr const char* kUnit =
    "unit Gauge;\ninterface\ntype\n  TGauge = class\n  public\n    procedure Run;\n  end;\n"
    "implementation\nprocedure TGauge.Run;\nbegin\nend;\nend.\n";

struct TProject {
  TProject() {
    WriteFile(dir.Path() / "src" / "shape.h", kHeader);
    WriteFile(dir.Path() / "src" / "shape.cpp", kSource);
    WriteFile(dir.Path() / "src" / "gauge.pas", kUnit);
  }
  TRunResult Run(std::vector<std::string> args) {
    args.insert(args.begin() + 1, (dir.Path() / "src").string());
    return RunVelmora(args, {"XDG_CONFIG_HOME=" + (dir.Path() / "config").string(),
                             "XDG_DATA_HOME=" + (dir.Path() / "data").string()});
  }
  TScratchDir dir;
};

TEST(CodegenCommandsTest, GotoPrintsFileAndLine) {
  struct Case {
    std::vector<std::string> args;
    int exit;
    std::string out;  // a suffix of the standard output, or of the error when exit != 0
  };
  const Case cases[] = {
      {{"goto", "TShape"}, 0, "shape.h:1\n"},
      {{"goto", "TShape::Area"}, 0, "shape.h:4\n"},
      {{"goto", "TShape::Area", "--impl"}, 0, "shape.cpp:3\n"},
      {{"goto", "TShape::Area", "--impl", "--params", "double"}, 0, "shape.cpp:8\n"},
      {{"goto", "TShape::Area", "--params", "char*"},
       1,
       "no method Area(char*) in class 'TShape'\n"},
      {{"goto", "tgauge::run", "--impl"}, 0, "gauge.pas:9\n"},
      {{"goto", "TShape::Nope"}, 1, "no member 'Nope' in class 'TShape'\n"},
      {{"goto", "TNone"}, 1, "no class 'TNone' in the project\n"},
  };
  TProject p;
  for (const Case& c : cases) {
    const TRunResult r = p.Run(c.args);
    const std::string name = c.args[1] + (c.args.size() > 2 ? " " + c.args[2] : "");
    EXPECT_EQ(r.ExitCode, c.exit) << name << "\n" << r.Err;
    const std::string& text = c.exit == 0 ? r.Out : r.Err;
    EXPECT_TRUE(text.ends_with(c.out)) << name << ": " << text;
  }
}

TEST(CodegenCommandsTest, AddMethodWritesBothFilesInTheirOwnLineEnds) {
  TProject p;
  const TRunResult r =
      p.Run({"add-method", "--class", "TShape", "--name", "Scale", "--args", "int By"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_EQ(ReadFile(p.dir.Path() / "src" / "shape.h"),
            "class TShape\r\n{\r\npublic:\r\n    int Area(int Scale);\r\n    int Area(double "
            "Scale);\r\n    void Scale(int By);\r\n};\r\n");
  EXPECT_TRUE(ReadFile(p.dir.Path() / "src" / "shape.cpp")
                  .ends_with("}\r\n\r\nvoid TShape::Scale(int By)\r\n{\r\n\r\n}\r\n"));
  EXPECT_TRUE(r.Out.ends_with("shape.cpp:13\n")) << r.Out;

  const TRunResult field = p.Run({"add-field", "--class", "TGauge", "--name", "FMax", "--type",
                                  "Integer", "--visibility", "private"});
  ASSERT_EQ(field.ExitCode, 0) << field.Err;
  EXPECT_EQ(ReadFile(p.dir.Path() / "src" / "gauge.pas"),
            "unit Gauge;\ninterface\ntype\n  TGauge = class\n  public\n    procedure Run;\n"
            "      private\n        FMax: Integer;\n  end;\nimplementation\nprocedure "
            "TGauge.Run;\nbegin\nend;\nend.\n");
}

TEST(CodegenCommandsTest, DryRunPrintsADiffAndWritesNothing) {
  TProject p;
  const std::vector<std::string> sources = {"shape.h", "shape.cpp", "gauge.pas"};
  std::vector<std::string> before;
  for (const std::string& f : sources) before.push_back(ReadFile(p.dir.Path() / "src" / f));
  const TRunResult r =
      p.Run({"add-property", "--class", "TGauge", "--name", "Max", "--type", "Integer",
             "--create-field", "--create-get", "--field-for-get", "--dry-run"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_NE(r.Out.find("+        FMax: Integer;\n"), std::string::npos) << r.Out;
  EXPECT_NE(r.Out.find("+        property Max: Integer read GetMax;\n"), std::string::npos)
      << r.Out;
  EXPECT_NE(r.Out.find("+    result := FMax;\n"), std::string::npos) << r.Out;
  for (size_t i = 0; i < sources.size(); ++i)
    EXPECT_EQ(ReadFile(p.dir.Path() / "src" / sources[i]), before[i]) << sources[i];
}

TEST(CodegenCommandsTest, ARefusedCommandExitsOneAndChangesNothing) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  const Case cases[] = {
      {{"add-field", "--class", "TShape", "--name", "Area", "--type", "int"},
       "velmora: A member with name \"Area\" already exists in class \"TShape\"!\n"},
      {{"add-method", "--class", "TGauge", "--name", "Do It", "--check-syntax"},
       "velmora: The value in field \"Method Name\" is not a valid identifier!\n"},
      {{"add-method", "--class", "TShape", "--name", "Draw", "--args", "int (x"},
       "velmora: Syntax error in argumentlist \"int (x\"!\nCannot create method!\n"},
      {{"add-property", "--class", "TGauge", "--name", "Max", "--type", "Integer", "--stored",
        "a b", "--check-syntax"},
       "velmora: The value in field \"Stored Specifier\" is not a valid identifier!\n"},
      {{"add-field", "--class", "TNone", "--name", "X", "--type", "int"},
       "velmora: no class 'TNone' in the project\n"},
  };
  TProject p;
  for (const Case& c : cases) {
    const std::string header = ReadFile(p.dir.Path() / "src" / "shape.h");
    const std::string unit = ReadFile(p.dir.Path() / "src" / "gauge.pas");
    const TRunResult r = p.Run(c.args);
    EXPECT_EQ(r.ExitCode, 1) << c.args[0] << " " << c.args[4];
    EXPECT_TRUE(r.Err.ends_with(c.message)) << r.Err;
    EXPECT_EQ(ReadFile(p.dir.Path() / "src" / "shape.h"), header);
    EXPECT_EQ(ReadFile(p.dir.Path() / "src" / "gauge.pas"), unit);
  }
}

TEST(CodegenCommandsTest, MarkerInsertThenPlacesTheNextImplementation) {
  TProject p;
  const fs::path source = p.dir.Path() / "src" / "shape.cpp";
  const TRunResult marker =
      RunVelmora({"marker", "insert", "class-end", source.string() + ":7", "TShape"},
                 {"XDG_CONFIG_HOME=" + (p.dir.Path() / "config").string()});
  ASSERT_EQ(marker.ExitCode, 0) << marker.Err;
  EXPECT_NE(
      ReadFile(source).find("}\r\n//ClassMarker_Method(TShape)\r\n\r\nint TShape::Area(double"),
      std::string::npos)
      << ReadFile(source);
  const TRunResult r = p.Run({"add-method", "--class", "TShape", "--name", "Draw"});
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  EXPECT_NE(ReadFile(source).find("void TShape::Draw()\r\n{\r\n\r\n}\r\n\r\n//ClassMarker_Method"),
            std::string::npos)
      << ReadFile(source);
  const TRunResult bad = RunVelmora({"marker", "insert", "class-end", source.string() + ":7"});
  EXPECT_EQ(bad.ExitCode, 2) << "an argument is needed";
}

}  // namespace
}  // namespace velmora
