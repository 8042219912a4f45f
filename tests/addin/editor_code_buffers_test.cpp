// Code generation through the editor buffers: the generated text lands in the unsaved
// buffer (read from it too), a file the IDE cannot give a writer for changes nothing, and
// saving writes the file in its own line-end style.
#include <gtest/gtest.h>

#include "addin/editor_code_buffers.h"
#include "addin/editor_streams.h"
#include "addin_fixture.h"
#include "codegen/add_member_requests.h"
#include "model/class_list.h"
#include "parsing/source_parser.h"
#include "settings/vl_settings.h"
#include "support/stream.h"

namespace velmora {
namespace {

using test::TAddInHost;

TEST(EditorCodeBuffersTest, AMethodGoesIntoTheUnsavedBuffersOfHeaderAndSource) {
  TAddInHost host;
  const std::string header =
      host.dir.Write("shape.h", "class TShape\n{\npublic:\n    int X;\n};\n");
  const std::string source = host.dir.Write("shape.cpp", "#include \"shape.h\"\n");
  ASSERT_TRUE(host.ide.OpenFile(header));
  // Typed but not saved: the generator must see this field.
  host.ide.SetBufferText(header, "class TShape\n{\npublic:\n    int X;\n    int Y;\n};\n");

  TEditorCodeBuffers buffers;
  TClasslist model;
  ParseSourceText(TLanguage::Cpp, header, TMemoryStream(*buffers.ReadText(header)), model, {},
                  nullptr);
  TVLSettings settings;
  TAddMethodRequest r;
  r.MethodName = "Move";
  r.Arguments = "int dx";
  const TAddMemberOutcome outcome = r.Apply({model.Find("TShape"), &settings, &buffers, header});
  ASSERT_TRUE(outcome.Ok) << (outcome.Message ? outcome.Message->Text : "");
  EXPECT_EQ(host.ide.Buffer(header)->Text,
            "class TShape\r\n{\r\npublic:\r\n    int X;\r\n    int Y;\r\n    void Move(int dx);\r\n"
            "};\r\n");
  EXPECT_EQ(host.ide.Buffer(source)->Text,
            "#include \"shape.h\"\r\n\r\nvoid TShape::Move(int dx)\r\n{\r\n\r\n}\r\n");
  EXPECT_EQ(buffers.FocusFile, source);
  EXPECT_EQ(buffers.FocusLine, 3);
  EXPECT_EQ(ReadWholeFile(source), "#include \"shape.h\"\n") << "nothing saved yet";
  ASSERT_TRUE(host.ide.SaveFile(source));
  EXPECT_EQ(ReadWholeFile(source), "#include \"shape.h\"\n\nvoid TShape::Move(int dx)\n{\n\n}\n");
}

TEST(EditorCodeBuffersTest, ABufferWithAWriterAliveRefusesAndNothingChanges) {
  TAddInHost host;
  const std::string unit = host.dir.Write(
      "u.pas", "unit U;\ninterface\ntype\n  TA = class\n  public\n  end;\nimplementation\nend.\n");
  TEditorCodeBuffers buffers;
  TClasslist model;
  ParseSourceText(TLanguage::Pascal, unit, TMemoryStream(*buffers.ReadText(unit)), model, {},
                  nullptr);
  const std::string before = host.ide.Buffer(unit)->Text;
  TEditorWriteStream busy(unit, true);  // holds the buffer's one writer
  ASSERT_TRUE(busy.Valid());
  TVLSettings settings;
  TAddMethodRequest r;
  r.MethodName = "Run";
  const TAddMemberOutcome outcome = r.Apply({model.Find("TA"), &settings, &buffers, unit});
  EXPECT_FALSE(outcome.Ok);
  EXPECT_EQ(host.ide.Buffer(unit)->Text, before);
}

}  // namespace
}  // namespace velmora
