// `velmora tokens FILE...`: the token lists of source files, one line per token:
//   INDEX <TAB> LINE <TAB> KIND <TAB> KINDNAME <TAB> TEXT
// ending with the end-of-text entry (empty text). The file is tokenized exactly as it is
// on disk, with no line-end conversion, so the output shows what the scanners do with the
// bytes themselves. With several files each file's lines follow a "==> PATH <==" line.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"
#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_tokenizer.h"
#include "parsing/source_parser.h"
#include "support/exception.h"
#include "support/stream.h"

namespace velmora::app {
namespace {

/// Reads the whole file into `text`; on failure returns the reason, naming the file.
bool ReadFile(const std::string& path, std::string& text, std::string& reason) {
  try {
    text = ReadWholeFile(path);
  } catch (const EStreamError& e) {
    reason = e.what();
    return false;
  }
  // Token offsets are 32-bit: a text must leave room for its NUL's offset.
  if (text.size() >= INT32_MAX) {
    reason = "Cannot read file \"" + path + "\": " + std::strerror(EFBIG);
    return false;
  }
  return true;
}

/// Collects output and writes it to stdout in large blocks.
class TOutput {
 public:
  ~TOutput() { Flush(); }
  std::string& Buffer() { return buffer_; }
  void FlushIfFull() {
    if (buffer_.size() >= kBlock) Flush();
  }
  void Flush() {
    if (!buffer_.empty()) std::fwrite(buffer_.data(), 1, buffer_.size(), stdout);
    buffer_.clear();
    std::fflush(stdout);
  }

 private:
  static constexpr size_t kBlock = 1 << 20;
  std::string buffer_;
};

void AppendInt(std::string& out, int32_t value) {
  char digits[16];
  const auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

/// Control characters become \r, \n, \t or \xNN (two lower-case hex digits). A backslash
/// is written as \\ so that every escape reads back one way: without that, a source
/// backslash followed by "n" would look like an escaped line feed. Other bytes, those
/// above 127 included, are written as they are.
void AppendEscaped(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 0x20 && c != 0x7F && c != '\\') {
      out.push_back(ch);
    } else if (c == '\\') {
      out += "\\\\";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else {
      const char escape[4] = {'\\', 'x', kHex[c >> 4], kHex[c & 15]};
      out.append(escape, 4);
    }
  }
}

void PrintTokens(TOutput& output, const std::string& path, const std::string& text) {
  const bool cpp = LanguageOfFile(path) == TLanguage::Cpp;
  std::unique_ptr<TTokenizer> tokenizer;
  if (cpp)
    tokenizer = std::make_unique<TCPPTokenizer>();
  else
    tokenizer = std::make_unique<TPascalTokenizer>();
  tokenizer->SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const auto kindName = cpp ? CppTokenKindName : PascalTokenKindName;
  const int32_t last = tokenizer->LastIndex();
  std::string& out = output.Buffer();
  for (int32_t i = 0; i <= last; ++i) {
    const int kind = tokenizer->Kinds().Get(i);
    AppendInt(out, i);
    out.push_back('\t');
    // Asked in token order, the line count resumes where the previous one stopped.
    AppendInt(out, tokenizer->LineOfToken(i));
    out.push_back('\t');
    AppendInt(out, kind);
    out.push_back('\t');
    out += kindName(kind);
    out.push_back('\t');
    AppendEscaped(out, tokenizer->TokenView(i));
    out.push_back('\n');
    output.FlushIfFull();
  }
}

int RunTokens(const std::vector<std::string>& paths) {
  TOutput output;
  int status = 0;
  std::string text;
  std::string reason;
  for (const std::string& path : paths) {
    if (!ReadFile(path, text, reason)) {
      output.Flush();  // keep stdout and stderr in order on a terminal
      std::fprintf(stderr, "velmora: %s\n", reason.c_str());
      status = 1;
      continue;
    }
    if (paths.size() > 1) output.Buffer() += "==> " + path + " <==\n";
    PrintTokens(output, path, text);
  }
  output.Flush();
  return status;
}

}  // namespace

void AddTokensCommand(CLI::App& app) {
  auto* cmd = app.add_subcommand("tokens", "Print the tokens of source files");
  auto paths = std::make_shared<std::vector<std::string>>();
  cmd->add_option("FILE", *paths,
                  "Source files; .c .cpp .cxx .cc .h .hpp .hxx are C++, others Object Pascal")
      ->required();
  cmd->callback([paths] {
    // A RuntimeError carries the exit code out of CLI11 without a message of its own.
    if (RunTokens(*paths) != 0) throw CLI::RuntimeError(1);
  });
}

}  // namespace velmora::app
