// The cursor side of the tokenizers: stepping, line tracking, and the offset and line
// queries.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"

namespace velmora {
namespace {

TEST(TokenizerCursorTest, LineOfOffsetCountsLfAndLoneCr) {
  // a CRLF b LF c CR d LF-CR e: the LF CR pair is one line-end token but two line ends
  // for the line count.
  const std::string text = "a\r\nb\nc\rd\n\re";
  TCPPTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const struct {
    int offset, line;
  } cases[] = {{-1, -1}, {0, 1}, {1, 1},  {2, 1},  {3, 2},   {5, 3}, {7, 4},
               {8, 4},   {9, 5}, {10, 6}, {11, 6}, {12, -1}, {3, 2}, {0, 1}};
  // In this order the queries go forwards, backwards and forwards again.
  for (auto c : cases) EXPECT_EQ(t.LineOfOffset(c.offset), c.line) << c.offset;
  EXPECT_EQ(t.GetLine(), 1);  // the tracked line is not touched
}

TEST(TokenizerCursorTest, LineOfOffsetAgreesWithAPlainCountOverLongMixedText) {
  // The count runs eight bytes at a time; line ends on word edges, CR LF pairs split
  // across two words and CRs just before the NUL must all count as a byte-wise walk does.
  std::mt19937 random(7);
  const char alphabet[] = {'\r', '\n', 'x', ' ', '\r', '\n'};
  for (int round = 0; round < 20; ++round) {
    std::string text;
    // The last rounds are long enough for the vector count to fold its lanes.
    const int length = 1 + static_cast<int>(random() % (round < 17 ? 300 : 9000));
    for (int i = 0; i < length; ++i) text += alphabet[random() % sizeof alphabet];
    TCPPTokenizer t;
    t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    int line = 1;
    for (int offset = 0; offset <= length; ++offset) {
      ASSERT_EQ(t.LineOfOffset(offset), line) << "round " << round << " offset " << offset;
      if (text[offset] == '\n' || (text[offset] == '\r' && text[offset + 1] != '\n')) ++line;
    }
    // A backward query starts over from the beginning of the text.
    for (int offset = length; offset >= 0; offset -= 397) {
      TCPPTokenizer fresh;
      fresh.SetText(text.c_str(), static_cast<int32_t>(text.size()));
      EXPECT_EQ(t.LineOfOffset(offset), fresh.LineOfOffset(offset)) << "round " << round;
    }
  }
}

TEST(TokenizerCursorTest, IndexOfOffsetFindsTheEnclosingToken) {
  const std::string text = "ab  cd";
  TCPPTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const struct {
    int offset, index;
  } cases[] = {{-1, -1}, {0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}, {6, 3}, {7, -1}};
  for (auto c : cases) EXPECT_EQ(t.IndexOfOffset(c.offset), c.index) << c.offset;
  EXPECT_EQ(t.LastIndex(), 3);
  EXPECT_EQ(t.TokenText(2), "cd");
  EXPECT_EQ(t.TokenText(3), "");
  EXPECT_EQ(t.LineOfToken(3), 1);
}

struct Step {
  bool forward;      // NextSignificant, or PrevSignificant
  const char* text;  // the token reached
  int line;          // the tracked line after the step
};

void Walk(TTokenizer& t, const std::string& name, const std::vector<Step>& steps) {
  for (size_t i = 0; i < steps.size(); ++i) {
    const Step& s = steps[i];
    const int kind = s.forward ? t.NextSignificant() : t.PrevSignificant();
    EXPECT_EQ(kind, t.KindAt(t.Index())) << name << " step " << i;
    EXPECT_EQ(t.Text(), s.text) << name << " step " << i;
    EXPECT_EQ(t.GetLine(), s.line) << name << " step " << i;
  }
}

TEST(TokenizerCursorTest, SteppingTracksLinesOverCommentsBothWays) {
  {
    const std::string text = "a\r\n/* 1\r\n2\r\n3 */\r\nb // c\r\n\r\nd /**/ e";
    TCPPTokenizer t;
    t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    // The three-line comment adds two, each line end one; the line comment one.
    Walk(t, "c++",
         {{true, "b", 5},
          {true, "d", 7},
          {true, "e", 7},
          {true, "", 7},
          {true, "", 7},
          {false, "e", 7},
          {false, "d", 7},
          {false, "b", 5},
          {false, "a", 1},
          {false, "a", 1},
          {true, "b", 5}});
  }
  {
    const std::string text =
        "unit U;\r\n{ one\r\ntwo }\r\n(* three\r\n*) interface // x\r\n{$R x}\r\nend.";
    TPascalTokenizer t;
    t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    // {$R x} is a directive: significant, and not scanned for lines.
    Walk(t, "pascal",
         {{true, "U", 1},
          {true, ";", 1},
          {true, "interface", 5},
          {true, "{$R x}", 6},
          {true, "end", 7},
          {true, ".", 7},
          {false, "end", 7},
          {false, "{$R x}", 6},
          {false, "interface", 5},
          {false, ";", 1}});
  }
}

TEST(TokenizerCursorTest, TrackedLineAgreesWithLineOfTokenOnCrLfText) {
  const std::string cpp =
      "// head\r\n#include <x.h>\r\n\r\nclass T {\r\n  /* a\r\n   b */ int x; // c\r\n"
      "  void f(); /**/\r\n};\r\n";
  const std::string pas =
      "unit U; // head\r\n\r\ninterface\r\n{ a\r\n  b } type\r\n  T = class (* c\r\n*)\r\n"
      "    X: Integer; { } end;\r\nimplementation\r\nend.\r\n";
  std::vector<std::pair<std::unique_ptr<TTokenizer>, const std::string*>> cases;
  cases.emplace_back(std::make_unique<TCPPTokenizer>(), &cpp);
  cases.emplace_back(std::make_unique<TPascalTokenizer>(), &pas);
  for (auto& [t, text] : cases) {
    t->SetText(text->c_str(), static_cast<int32_t>(text->size()));
    while (t->NextSignificant() != 0)
      EXPECT_EQ(t->GetLine(), t->LineOfToken(t->Index())) << *text << " at " << t->Text();
    // Back from the end, uncounting the final line end on the way.
    while (t->Index() > 0) {
      t->PrevSignificant();
      EXPECT_EQ(t->GetLine(), t->LineOfToken(t->Index())) << *text << " at " << t->Text();
    }
  }
}

TEST(TokenizerCursorTest, KindAtCountsEachTokenOnceAndClamps) {
  const std::string text = "a\r\nb";
  TCPPTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  EXPECT_EQ(t.KindAt(1), ctLineEnd);
  EXPECT_EQ(t.GetLine(), 2);
  EXPECT_EQ(t.KindAt(1), ctLineEnd);  // the same token again: not counted twice
  EXPECT_EQ(t.GetLine(), 2);
  EXPECT_EQ(t.KindAt(99), ctEndOfText);
  EXPECT_EQ(t.KindAt(-5), ctEndOfText);
  EXPECT_EQ(t.KindAt(1), ctLineEnd);
  EXPECT_EQ(t.GetLine(), 3);
  t.SetIndex(1);  // moves the cursor only
  EXPECT_EQ(t.GetLine(), 3);
  t.Next();
  t.Next();
  t.Next();
  EXPECT_EQ(t.Index(), 3);    // Next stops on the end entry
  EXPECT_EQ(t.GetLine(), 3);  // and reads nothing
}

TEST(TokenizerCursorTest, CommentLineRules) {
  const struct {
    std::string text;
    int line;  // the tracked line after reading the comment token 0 forwards
  } cases[] = {
      {.text = "/* a\r\nb\r\nc */", .line = 3},
      {.text = "/* a\nb\nc */", .line = 1},  // only CRs count inside block comments
      {.text = "/*/\r\n*/", .line = 1},      // the scan starts at the opening star
      {.text = "// a", .line = 2},           // a line comment counts one, even at the end
      {.text = "// a\n\n\r\n", .line = 2},
  };
  for (const auto& c : cases) {
    TCPPTokenizer t;
    t.SetText(c.text.c_str(), static_cast<int32_t>(c.text.size()));
    t.KindAt(0);
    EXPECT_EQ(t.GetLine(), c.line) << c.text;
  }
  const struct {
    std::string text;
    int line;
  } pascal[] = {
      {.text = "(* a\r\nb *)", .line = 2}, {.text = "(*)\r\n*)", .line = 1},
      {.text = "{ a\r\n\r\n}", .line = 3}, {.text = "{$I a\r\n}", .line = 1},
      {.text = "// a\r\n", .line = 2},
  };
  for (const auto& c : pascal) {
    TPascalTokenizer t;
    t.SetText(c.text.c_str(), static_cast<int32_t>(c.text.size()));
    t.KindAt(0);
    EXPECT_EQ(t.GetLine(), c.line) << c.text;
  }
}

TEST(TokenizerCursorTest, NextSkipCommentsStopsOnBlanks) {
  const std::string text = "a/**/// x\r\n b";
  TCPPTokenizer t;
  t.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  EXPECT_EQ(t.NextSkipComments(), ctWhitespace);
  EXPECT_EQ(t.Index(), 3);
  EXPECT_EQ(t.GetLine(), 2);
  EXPECT_EQ(t.NextSkipComments(), ctIdentifier);
  EXPECT_EQ(t.NextSkipComments(), ctEndOfText);
  EXPECT_EQ(t.NextSkipComments(), ctEndOfText);
  EXPECT_EQ(t.Index(), t.LastIndex());
}

}  // namespace
}  // namespace velmora
