#include "hosts/lsp/transport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::lsp {
namespace {

// Feeds `input` to a reader in pieces of `chunk` bytes, so that headers and bodies are
// split at every place a pipe may split them.
std::vector<std::string> ReadAll(const std::string& input, std::size_t chunk,
                                 std::vector<std::string>* errors = nullptr,
                                 std::size_t maxBody = kMaxBodySize) {
  std::size_t pos = 0;
  TFrameReader reader(
      [&](char* buffer, std::size_t size) {
        const std::size_t n = std::min({size, chunk, input.size() - pos});
        input.copy(buffer, n, pos);
        pos += n;
        return n;
      },
      maxBody);
  std::vector<std::string> bodies;
  std::string body, error;
  for (;;) {
    const TFrameStatus status = reader.Next(body, error);
    if (status == TFrameStatus::End) break;
    if (status == TFrameStatus::Message) bodies.push_back(body);
    if (status == TFrameStatus::BadHeader) {
      bodies.push_back("<bad>");
      if (errors) errors->push_back(error);
    }
  }
  return bodies;
}

struct FrameCase {
  const char* name;
  std::string input;
  std::vector<std::string> bodies;
};

TEST(LspTransport, ReadsFramesAsClientsSendThem) {
  const FrameCase cases[] = {
      {.name = "one", .input = "Content-Length: 2\r\n\r\n{}", .bodies = {"{}"}},
      {.name = "two back to back",
       .input = "Content-Length: 1\r\n\r\naContent-Length: 3\r\n\r\nbcd",
       .bodies = {"a", "bcd"}},
      {.name = "content type and lower-case name",
       .input = "content-length: 3\r\nContent-Type: application/vscode-jsonrpc; "
                "charset=utf-8\r\n\r\nxyz",
       .bodies = {"xyz"}},
      {.name = "LF-only header lines", .input = "Content-Length: 2\n\n[]", .bodies = {"[]"}},
      {.name = "blanks around the number",
       .input = "Content-Length:   4  \r\n\r\nabcd",
       .bodies = {"abcd"}},
      {.name = "empty body", .input = "Content-Length: 0\r\n\r\n", .bodies = {""}},
      {.name = "body holding header text",
       .input = "Content-Length: 23\r\n\r\nContent-Length: 5\r\n\r\nab",
       .bodies = {"Content-Length: 5\r\n\r\nab"}},
      {.name = "stray line end between messages",
       .input = "Content-Length: 1\r\n\r\na\r\nContent-Length: 1\r\n\r\nb",
       .bodies = {"a", "b"}},
      {.name = "no length, then a good one",
       .input = "Content-Type: x\r\n\r\nContent-Length: 1\r\n\r\nz",
       .bodies = {"<bad>", "z"}},
      {.name = "length not a number",
       .input = "Content-Length: 1x\r\n\r\nContent-Length: 1\r\n\r\nq",
       .bodies = {"<bad>", "q"}},
      {.name = "negative length", .input = "Content-Length: -5\r\n\r\n", .bodies = {"<bad>"}},
      {.name = "body cut short at the end", .input = "Content-Length: 10\r\n\r\nabc", .bodies = {}},
      {.name = "header cut short at the end", .input = "Content-Len", .bodies = {}},
      {.name = "empty input", .input = "", .bodies = {}},
  };
  for (const FrameCase& c : cases) {
    for (const std::size_t chunk : {std::size_t{1}, std::size_t{3}, std::size_t{65536}}) {
      EXPECT_EQ(ReadAll(c.input, chunk), c.bodies) << c.name << ", chunks of " << chunk;
    }
  }
}

TEST(LspTransport, DamagedHeadersSayWhatWasWrong) {
  std::vector<std::string> errors;
  const std::string input = std::string("X-Long: ") + std::string(20000, 'a') +
                            "\r\nContent-Length: 2\r\n\r\nokContent-Length: 99999999999\r\n\r\n";
  // A long damaged line beside a good length still gives its message; a length past the
  // limit is refused without reading it into memory (the input ends before it anyway).
  EXPECT_EQ(ReadAll(input, 4096, &errors), std::vector<std::string>{"ok"});

  errors.clear();
  EXPECT_EQ(ReadAll("Garbage\r\n\r\n", 7, &errors), std::vector<std::string>{"<bad>"});
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0], "header line without ':'");
}

TEST(LspTransport, OversizedBodyIsPassedOverAndReadingGoesOn) {
  std::string input = "Content-Length: 5000\r\n\r\n";
  input.append(5000, ' ');
  input += "Content-Length: 1\r\n\r\nk";
  std::vector<std::string> errors;
  EXPECT_EQ(ReadAll(input, 333, &errors, 4096), (std::vector<std::string>{"<bad>", "k"}));
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0], "message of 5000 bytes is too large");
}

TEST(LspTransport, WriterFramesAndStopsWhenTheOutputIsGone) {
  std::string out;
  int calls = 0;
  TFrameWriter writer([&](std::string_view bytes) {
    ++calls;
    out.append(bytes);
    return calls < 2;
  });
  EXPECT_TRUE(writer.Send("{}"));
  EXPECT_EQ(out, "Content-Length: 2\r\n\r\n{}");
  EXPECT_FALSE(writer.Send("[1]"));
  EXPECT_FALSE(writer.Send("[2]"));
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(ReadAll(out, 5), (std::vector<std::string>{"{}", "[1]"}));
}

}  // namespace
}  // namespace velmora::lsp
