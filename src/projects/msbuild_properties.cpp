#include "projects/msbuild_properties.h"

#include <cstdlib>
#include <vector>

#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

constexpr size_t kMaxValueSize = 1u << 20;

// A condition's tokens: quoted strings, words, and the operators.
struct TToken {
  enum Kind { String, Word, Equal, NotEqual, Not, Open, Close, End } kind;
  std::string text;
};

std::vector<TToken> Tokenize(std::string_view s) {
  std::vector<TToken> out;
  size_t i = 0;
  while (i < s.size()) {
    const char c = s[i];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++i;
    } else if (c == '\'') {
      const size_t end = s.find('\'', i + 1);
      if (end == std::string_view::npos) return {};  // unclosed: not a condition
      out.push_back({TToken::String, std::string(s.substr(i + 1, end - i - 1))});
      i = end + 1;
    } else if (c == '=' && i + 1 < s.size() && s[i + 1] == '=') {
      out.push_back({TToken::Equal, {}});
      i += 2;
    } else if (c == '!' && i + 1 < s.size() && s[i + 1] == '=') {
      out.push_back({TToken::NotEqual, {}});
      i += 2;
    } else if (c == '!') {
      out.push_back({TToken::Not, {}});
      ++i;
    } else if (c == '(' || c == ')') {
      out.push_back({c == '(' ? TToken::Open : TToken::Close, {}});
      ++i;
    } else {
      const size_t start = i;
      while (i < s.size() && s[i] != ' ' && s[i] != '\t' && s[i] != '\'' && s[i] != '(' &&
             s[i] != ')' && s[i] != '=' && s[i] != '!')
        ++i;
      if (i == start) return {};
      out.push_back({TToken::Word, std::string(s.substr(start, i - start))});
    }
  }
  out.push_back({TToken::End, {}});
  return out;
}

// Recursive descent over the tokens; `ok` turns false at the first thing it does not know.
class TConditionParser {
 public:
  explicit TConditionParser(std::vector<TToken> tokens) : tokens_(std::move(tokens)) {}

  bool Evaluate() {
    if (tokens_.empty()) return false;
    const bool value = Or();
    return ok_ && Peek().kind == TToken::End && value;
  }

 private:
  const TToken& Peek() const { return tokens_[pos_]; }
  void Next() {
    if (pos_ + 1 < tokens_.size()) ++pos_;
  }
  bool IsWord(std::string_view w) const {
    return Peek().kind == TToken::Word && SameText(Peek().text, w);
  }

  bool Or() {
    bool value = And();
    while (ok_ && IsWord("or")) {
      Next();
      const bool right = And();
      value = value || right;
    }
    return value;
  }
  bool And() {
    bool value = Unary();
    while (ok_ && IsWord("and")) {
      Next();
      const bool right = Unary();
      value = value && right;
    }
    return value;
  }
  bool Unary() {
    // Nesting is bounded by the token count, which the file's size bounds; a deep chain
    // of `!` or `(` is refused before it can exhaust the stack.
    if (++depth_ > 64) {
      ok_ = false;
      return false;
    }
    bool value = false;
    if (Peek().kind == TToken::Not) {
      Next();
      value = !Unary();
    } else if (Peek().kind == TToken::Open) {
      Next();
      value = Or();
      if (Peek().kind != TToken::Close) ok_ = false;
      Next();
    } else {
      value = Comparison();
    }
    --depth_;
    return value;
  }
  bool Comparison() {
    std::string left;
    if (!Operand(left)) return false;
    const TToken::Kind op = Peek().kind;
    if (op != TToken::Equal && op != TToken::NotEqual) {
      if (SameText(left, "true")) return true;
      if (!SameText(left, "false")) ok_ = false;
      return false;
    }
    Next();
    std::string right;
    if (!Operand(right)) return false;
    return SameText(left, right) == (op == TToken::Equal);
  }
  bool Operand(std::string& text) {
    if (Peek().kind == TToken::String || Peek().kind == TToken::Word) {
      text = Peek().text;
      Next();
      return true;
    }
    ok_ = false;
    return false;
  }

  std::vector<TToken> tokens_;
  size_t pos_ = 0;
  int depth_ = 0;
  bool ok_ = true;
};

}  // namespace

TMsBuildProperties::TMsBuildProperties(pugi::xml_node project, const std::string& projectPath) {
  const std::string_view file = ExtractFileName(projectPath);
  const std::string_view ext = ExtractFileExt(file);
  values_["MSBUILDPROJECTNAME"] = std::string(file.substr(0, file.size() - ext.size()));
  std::string dir(ExtractFilePath(projectPath));
  if (dir.size() > 1) dir.pop_back();
  values_["MSBUILDPROJECTDIRECTORY"] = dir;

  for (pugi::xml_node group : project.children())
    if (SameText(group.name(), "PropertyGroup"))
      for (pugi::xml_node p : group.children())
        if (p.type() == pugi::node_element) known_[AnsiUpperCase(p.name())] = true;

  for (pugi::xml_node group : project.children()) {
    if (!SameText(group.name(), "PropertyGroup")) continue;
    if (!Holds(group.attribute("Condition").value())) continue;
    for (pugi::xml_node p : group.children()) {
      if (p.type() != pugi::node_element) continue;
      if (!Holds(p.attribute("Condition").value())) continue;
      values_[AnsiUpperCase(p.name())] = Expand(p.child_value());
    }
  }
}

std::optional<std::string> TMsBuildProperties::Value(std::string_view name) const {
  auto it = values_.find(AnsiUpperCase(name));
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

std::string TMsBuildProperties::Expand(std::string_view text) const {
  std::string out;
  size_t pos = 0;
  while (pos < text.size()) {
    // A property that doubles itself in every group would otherwise grow without bound;
    // nothing a project sets comes near this size.
    if (out.size() > kMaxValueSize) return out;
    const size_t open = text.find("$(", pos);
    const size_t close = open == std::string_view::npos ? open : text.find(')', open + 2);
    if (close == std::string_view::npos) break;
    out.append(text, pos, open - pos);
    const std::string name(text.substr(open + 2, close - open - 2));
    const std::string key = AnsiUpperCase(name);
    if (auto it = values_.find(key); it != values_.end())
      out += it->second;
    else if (known_.count(key) == 0) {
      if (const char* env = std::getenv(name.c_str()))
        out += env;
      else
        out.append(text, open, close + 1 - open);
    }
    pos = close + 1;
  }
  out.append(text, pos);
  return out;
}

bool TMsBuildProperties::Holds(std::string_view condition) const {
  if (Trim(condition).empty()) return true;
  // Unknown names compare as empty in a condition, whatever Expand keeps for paths.
  std::string expanded;
  size_t pos = 0;
  while (pos < condition.size()) {
    const size_t open = condition.find("$(", pos);
    const size_t close = open == std::string_view::npos ? open : condition.find(')', open + 2);
    if (close == std::string_view::npos) break;
    expanded.append(condition, pos, open - pos);
    if (auto v = Value(condition.substr(open + 2, close - open - 2))) expanded += *v;
    pos = close + 1;
  }
  expanded.append(condition, pos);
  return TConditionParser(Tokenize(expanded)).Evaluate();
}

}  // namespace velmora::projects
