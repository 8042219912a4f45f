#include "parsing/parser_common.h"

#include <gtest/gtest.h>

#include <string>

#include "model/class_list.h"
#include "parsing/cpp_tokenizer.h"

namespace velmora {
namespace {

using parser_common::RecordClassHead;
using parser_common::TClassHead;

// A class as an earlier parse left it, with everything a head can say filled in.
TClassDescription* RecordedBefore(TClasslist& list, TLanguage language) {
  TClassDescription* c = RecordClassHead(list, "Old.h", true,
                                         {.Name = "TKiln",
                                          .Language = language,
                                          .Kind = TClassKind::Template,
                                          .TemplateParams = "class T",
                                          .Ancestors = {{TVisibility::Public, "TOldBase"}},
                                          .Start = {1, 0},
                                          .End = {1, 20}});
  c->Guid = "{00000000-0000-0000-0000-000000000001}";
  c->GetPositionInfo(true)->At(TVisibility::Public, TPositionInfo::Section) = {1, 2, 3, 4};
  return c;
}

TEST(RecordClassHeadTest, RefillsEverythingTheHeadSays) {
  const struct {
    const char* name;
    TLanguage language;
    bool wantPositions;
  } cases[] = {
      {.name = "C++, positions wanted", .language = TLanguage::Cpp, .wantPositions = true},
      {.name = "C++, no positions", .language = TLanguage::Cpp, .wantPositions = false},
      {.name = "Pascal, positions wanted", .language = TLanguage::Pascal, .wantPositions = true},
      {.name = "Pascal, no positions", .language = TLanguage::Pascal, .wantPositions = false},
  };
  for (const auto& c : cases) {
    TClasslist list;
    TClassDescription* before = RecordedBefore(list, c.language);
    TClassDescription* after = RecordClassHead(
        list, "Kiln.h", c.wantPositions,
        {.Name = "TKiln",
         .Language = c.language,
         .Kind = TClassKind::Class,
         .TemplateParams = {},
         .Ancestors = {{TVisibility::Protected, "TBase"}, {TVisibility::Public, "IFiring"}},
         .Start = {7, 120},
         .End = {8, 150}});
    ASSERT_EQ(after, before) << c.name << ": found, not added again";
    EXPECT_EQ(list.Count(), 1) << c.name;
    EXPECT_EQ(after->ClassKind, TClassKind::Class) << c.name;
    EXPECT_EQ(after->TemplateParams, "") << c.name;
    EXPECT_EQ(after->Guid, "") << c.name << ": a GUID comes from the body, read after the head";
    ASSERT_EQ(after->Ancestors.Count(), 2) << c.name;
    EXPECT_EQ(after->Ancestors[0], TClassAncestor(TVisibility::Protected, "TBase")) << c.name;
    EXPECT_EQ(after->Ancestors[1], TClassAncestor(TVisibility::Public, "IFiring")) << c.name;
    EXPECT_EQ(after->UnitName, "Kiln.h") << c.name;
    EXPECT_EQ(after->StartLine, 7) << c.name;
    EXPECT_EQ(after->StartOffset, 120) << c.name;
    EXPECT_EQ(after->EndLine, 8) << c.name;
    EXPECT_EQ(after->EndOffset, 150) << c.name;
    TPositionInfo* positions = after->GetPositionInfo(false);
    if (c.wantPositions) {
      ASSERT_NE(positions, nullptr) << c.name;
      EXPECT_EQ(positions->At(TVisibility::Public, TPositionInfo::Section).StartLine, -1)
          << c.name << ": the old table is reset";
    } else {
      EXPECT_EQ(positions, nullptr) << c.name << ": a stale table is dropped";
    }
  }
}

TEST(ParserCommonTest, PeekSignificantLeavesTheCursorAndLineAlone) {
  const std::string text = "a /* x\r\n */ // y\r\n\r\n  b";
  TCPPTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  EXPECT_EQ(parser_common::PeekSignificant(t), ctIdentifier);
  EXPECT_EQ(t.Index(), 0);
  EXPECT_EQ(t.GetLine(), 1);
  const int32_t b = parser_common::NextSignificantIndex(t, 0);
  EXPECT_EQ(t.TokenView(b), "b");
  EXPECT_EQ(parser_common::SpotOf(t, b).Line, 4);
  EXPECT_EQ(parser_common::SpotOf(t, b).Offset, static_cast<int32_t>(text.size()) - 1);
  t.SetIndex(b);
  EXPECT_EQ(parser_common::PeekSignificant(t), ctEndOfText);
  EXPECT_EQ(parser_common::NextSignificantIndex(t, b), t.LastIndex());
}

}  // namespace
}  // namespace velmora
