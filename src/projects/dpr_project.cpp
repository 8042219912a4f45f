// Delphi programs and libraries: the `.dpr` source is the project. Its `uses` clause
// names the units, `Name in 'path'` for the project's own; a bare name is the project's
// only when a source of that name lies beside it (else it is a library unit, found by the
// compiler's paths and not ours to report). The `.dof` beside it, when there is one,
// holds the search path and conditionals the IDE compiles with.
#include "projects/ini_text.h"
#include "projects/project_builder.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

// Just enough of Object Pascal to walk a project source's head: words, quoted strings
// and punctuation, with the three comment forms skipped.
class TDprScanner {
 public:
  explicit TDprScanner(std::string_view text) : text_(text) {}

  enum Kind { Word, String, Symbol, End };
  struct TToken {
    Kind kind;
    std::string text;
  };

  TToken Next() {
    SkipBlanksAndComments();
    if (pos_ >= text_.size()) return {End, {}};
    const char c = text_[pos_];
    if (IsWordChar(c)) {
      const size_t start = pos_;
      // Dotted unit names (`Vcl.Forms`) are one word.
      while (pos_ < text_.size() && (IsWordChar(text_[pos_]) || text_[pos_] == '.')) ++pos_;
      return {Word, std::string(text_.substr(start, pos_ - start))};
    }
    if (c == '\'') {
      std::string value;
      ++pos_;
      while (pos_ < text_.size()) {
        if (text_[pos_] == '\'') {
          if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '\'') {
            value += '\'';
            pos_ += 2;
            continue;
          }
          ++pos_;
          break;
        }
        if (text_[pos_] == '\n') break;  // strings do not span lines
        value += text_[pos_++];
      }
      return {String, value};
    }
    ++pos_;
    return {Symbol, std::string(1, c)};
  }

 private:
  static bool IsWordChar(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 128;
  }
  void SkipBlanksAndComments() {
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (static_cast<unsigned char>(c) <= ' ') {
        ++pos_;
      } else if (c == '{') {
        const size_t end = text_.find('}', pos_);
        pos_ = end == std::string_view::npos ? text_.size() : end + 1;
      } else if (c == '(' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '*') {
        const size_t end = text_.find("*)", pos_ + 2);
        pos_ = end == std::string_view::npos ? text_.size() : end + 2;
      } else if (c == '/' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '/') {
        const size_t end = text_.find('\n', pos_);
        pos_ = end == std::string_view::npos ? text_.size() : end + 1;
      } else {
        return;
      }
    }
  }

  std::string_view text_;
  size_t pos_ = 0;
};

}  // namespace

TProject ReadDprProject(const std::string& path) {
  const std::string text = ReadProjectFile(path);
  TProjectBuilder builder(path, TProjectKind::Dpr);
  const std::string name(ExtractFileName(path));

  TDprScanner scanner(text);
  TDprScanner::TToken token = scanner.Next();
  if (token.kind != TDprScanner::Word ||
      !(SameText(token.text, "program") || SameText(token.text, "library")))
    throw EProjectError("\"" + name +
                        "\" is not a Delphi project: it does not begin with program or library");
  builder.AddExistingUnit(path);

  // The head ends at the program name's `;`; the uses clause, when there is one, follows.
  while (token.kind != TDprScanner::End && token.text != ";") token = scanner.Next();
  token = scanner.Next();
  if (token.kind == TDprScanner::Word && SameText(token.text, "uses")) {
    for (;;) {
      token = scanner.Next();
      if (token.kind != TDprScanner::Word) break;
      const std::string unit = token.text;
      token = scanner.Next();
      if (token.kind == TDprScanner::Word && SameText(token.text, "in")) {
        token = scanner.Next();
        if (token.kind != TDprScanner::String) break;
        builder.AddUnit(token.text, EnvironmentMacro);
        token = scanner.Next();
      } else {
        const std::string beside = ResolveExistingFile(builder.Dir() + unit + ".pas");
        if (!beside.empty()) builder.AddExistingUnit(beside);
      }
      if (token.text != ",") break;
    }
  }

  const std::string_view ext = ExtractFileExt(path);
  const std::string dofPath =
      ResolveExistingFile(path.substr(0, path.size() - ext.size()) + ".dof");
  if (!dofPath.empty()) {
    try {
      const TIniText dof(ReadProjectFile(dofPath));
      const std::string searchPath = dof.Value("Directories", "SearchPath").value_or("");
      // The IDE hands the search path to the compiler for units and include files alike.
      builder.AddUnitSearchPath(searchPath, EnvironmentMacro);
      builder.AddIncludePath(searchPath, EnvironmentMacro);
      builder.AddDefines(dof.Value("Directories", "Conditionals").value_or(""));
    } catch (const EProjectError& e) {
      builder.Warn(std::string("options not read: ") + e.what());
    }
  }
  return builder.Finish();
}

}  // namespace velmora::projects
