#include "model/parameters.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "model/class_info_error.h"
#include "support/ansi.h"
#include "support/stream.h"

namespace velmora {
namespace {

bool IsIdentChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u == '$' || u >= 128;
}

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= 32;
}

// Index just past the literal that starts at `i` (a quote character); a literal that does
// not close runs to the end. C++ literals know backslash escapes, Pascal doubles its quote.
size_t SkipLiteral(std::string_view s, size_t i, bool cpp) {
  const char quote = s[i];
  for (++i; i < s.size(); ++i) {
    if (cpp && s[i] == '\\') {
      ++i;
    } else if (s[i] == quote) {
      if (!cpp && i + 1 < s.size() && s[i + 1] == quote) {
        ++i;
        continue;
      }
      return i + 1;
    }
  }
  return s.size();
}

bool IsOpen(char c) {
  return c == '(' || c == '[' || c == '{';
}
bool IsClose(char c) {
  return c == ')' || c == ']' || c == '}';
}

// A '=' that assigns, not one of "==", "<=", ">=", "!=".
bool IsAssign(std::string_view s, size_t i) {
  if (s[i] != '=') return false;
  if (i + 1 < s.size() && s[i + 1] == '=') return false;
  if (i > 0 && (s[i - 1] == '=' || s[i - 1] == '<' || s[i - 1] == '>' || s[i - 1] == '!'))
    return false;
  return true;
}

// What the scans of parameter text have to look at; every other character (but the one a
// scan looks for) only moves them on.
enum : uint8_t { kPlain, kQuote, kOpen, kClose, kAngleOpen, kAngleClose };
constexpr std::array<uint8_t, 256> kStructure = [] {
  std::array<uint8_t, 256> t{};
  t['"'] = t['\''] = kQuote;
  t['('] = t['['] = t['{'] = kOpen;
  t[')'] = t[']'] = t['}'] = kClose;
  t['<'] = kAngleOpen;
  t['>'] = kAngleClose;
  return t;
}();

// Hands `visit` the pieces of C++ parameter text between the commas that stand outside
// brackets, literals and template arguments. Angle brackets count only before a parameter's
// default value, where they cannot be operators; inside a default value only real brackets
// protect a comma.
template <typename Visit>
void ForEachCppParameter(std::string_view s, Visit visit) {
  int depth = 0, angles = 0;
  bool inDefault = false;
  size_t start = 0;
  for (size_t i = 0; i < s.size();) {
    const char c = s[i];
    if (kStructure[static_cast<unsigned char>(c)] == kPlain && c != '=' && c != ',') {
      ++i;
      continue;
    }
    if (c == '"' || c == '\'') {
      i = SkipLiteral(s, i, true);
      continue;
    }
    if (IsOpen(c)) {
      ++depth;
    } else if (IsClose(c)) {
      depth = std::max(0, depth - 1);
    } else if (depth == 0 && !inDefault && c == '<') {
      ++angles;
    } else if (depth == 0 && !inDefault && c == '>') {
      angles = std::max(0, angles - 1);
    } else if (depth == 0 && angles == 0 && IsAssign(s, i)) {
      inDefault = true;
    } else if (depth == 0 && angles == 0 && c == ',') {
      visit(s.substr(start, i - start));
      start = i + 1;
      inDefault = false;
    }
    ++i;
  }
  visit(s.substr(start));
}

// Position of the first top-level character `target` (outside brackets, literals and, when
// `angles` is set, template arguments), or npos. The parsers call it several times for
// every parameter list of a unit, so one table lookup sorts out each character.
size_t FindTopLevel(std::string_view s, char target, bool cpp, bool angles) {
  int depth = 0, angleDepth = 0;
  for (size_t i = 0; i < s.size();) {
    const char c = s[i];
    const uint8_t kind = kStructure[static_cast<unsigned char>(c)];
    if (kind == kPlain && c != target) {
      ++i;
      continue;
    }
    if (kind == kQuote) {
      i = SkipLiteral(s, i, cpp);
      continue;
    }
    if (depth == 0 && angleDepth == 0 && c == target && (target != '=' || IsAssign(s, i))) return i;
    switch (kind) {
      case kOpen:
        ++depth;
        break;
      case kClose:
        depth = std::max(0, depth - 1);
        break;
      case kAngleOpen:
        if (angles && depth == 0) ++angleDepth;
        break;
      case kAngleClose:
        if (angles && depth == 0) angleDepth = std::max(0, angleDepth - 1);
        break;
      default:
        break;
    }
    ++i;
  }
  return std::string_view::npos;
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// Words that can end a C++ type but never name a parameter.
bool IsTypeWord(std::string_view w) {
  return IsOneOf(
      w, {"int",     "char",    "short",   "long",    "unsigned", "signed",   "float", "double",
          "bool",    "void",    "wchar_t", "char8_t", "char16_t", "char32_t", "auto",  "__int8",
          "__int16", "__int32", "__int64", "const",   "volatile", "__closure"});
}

// Words after which an identifier is still the type: `struct tm`, `const TFoo`.
bool IsTypePrefixWord(std::string_view w) {
  return IsOneOf(w, {"const", "volatile", "struct", "class", "enum", "union", "typename"});
}

bool OnlyTypePrefixWords(std::string_view s) {
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    if (i == s.size()) break;
    size_t j = i;
    while (j < s.size() && IsIdentChar(s[j])) ++j;
    if (j == i || !IsTypePrefixWord(s.substr(i, j - i))) return false;
    i = j;
  }
  return true;
}

// The last identifier of `s` as [start, end), or start == end when none.
std::pair<size_t, size_t> LastIdentifier(std::string_view s) {
  size_t end = s.size();
  while (end > 0 && !IsIdentChar(s[end - 1])) --end;
  size_t start = end;
  while (start > 0 && IsIdentChar(s[start - 1])) --start;
  if (start < end && s[start] >= '0' && s[start] <= '9') return {end, end};
  return {start, end};
}

// A declarator in brackets: `void (*cb)(int)`, `void (__closure *OnClick)(TObject*)`,
// `int (&a)[3]`. Returns true and fills the parameter when `decl` has one.
bool ReadBracketedDeclarator(std::string_view decl, TParameter& p) {
  if (decl.find('(') == std::string_view::npos) return false;  // most parameters
  const size_t open = FindTopLevel(decl, '(', true, true);
  if (open == std::string_view::npos) return false;
  size_t close = open + 1;
  for (int depth = 1; close < decl.size(); ++close) {
    if (decl[close] == '(') ++depth;
    if (decl[close] == ')' && --depth == 0) break;
  }
  const std::string_view inner = decl.substr(open + 1, close - open - 1);
  if (inner.find_first_of("*&^") == std::string_view::npos) return false;
  const auto [start, end] = LastIdentifier(inner);
  std::string name(inner.substr(start, end - start));
  if (IsTypeWord(name) || name == "__fastcall" || name == "__stdcall" || name == "__cdecl") {
    p.ParamType = std::string(Trim(decl));
    return true;
  }
  std::string type(decl);
  type.erase(open + 1 + start, end - start);
  // "( * )" keeps no blank inside the closing bracket where the name was.
  const size_t nameAt = open + 1 + start;
  size_t blanks = nameAt;
  while (blanks > open + 1 && IsBlank(type[blanks - 1])) --blanks;
  if (nameAt < type.size() && type[nameAt] == ')') type.erase(blanks, nameAt - blanks);
  p.Name = std::move(name);
  p.ParamType = std::string(Trim(type));
  return true;
}

void ReadCppParameter(std::string_view text, TParameterList& list) {
  text = Trim(text);
  if (text.empty()) return;
  TParameter& p = list.Add({}, {});
  if (text == "...") {
    p.ParamType = "...";
    return;
  }
  std::string_view decl = text;
  const size_t eq = text.find('=') == std::string_view::npos ? std::string_view::npos
                                                             : FindTopLevel(text, '=', true, true);
  if (eq != std::string_view::npos) {
    decl = Trim(text.substr(0, eq));
    p.DefaultValue = std::string(Trim(text.substr(eq + 1)));
  }
  if (ReadBracketedDeclarator(decl, p)) return;
  // Array bounds after the name go to the modifier, outermost last: `int m[2][3]`.
  while (!decl.empty() && decl.back() == ']') {
    int depth = 0;
    size_t i = decl.size();
    while (i > 0) {
      --i;
      if (decl[i] == ']') ++depth;
      if (decl[i] == '[' && --depth == 0) break;
    }
    if (depth != 0) break;
    p.Modifier.insert(0, decl.substr(i));
    decl = Trim(decl.substr(0, i));
  }
  const auto [start, end] = LastIdentifier(decl);
  const std::string_view before = Trim(decl.substr(0, start));
  const std::string_view ident = decl.substr(start, end - start);
  const bool named = start < end && end == decl.size() && !before.empty() &&
                     !before.ends_with("::") && !IsTypeWord(ident) && !OnlyTypePrefixWords(before);
  if (named) {
    p.Name = std::string(ident);
    p.ParamType = std::string(before);
  } else {
    p.ParamType = std::string(decl);
  }
}

void ReadPascalGroup(std::string_view text, TParameterList& list) {
  text = Trim(text);
  if (text.empty()) return;
  std::string_view modifier;
  for (std::string_view word : {"var", "const", "out", "constref"}) {
    if (text.size() > word.size() && SameText(text.substr(0, word.size()), word) &&
        IsBlank(text[word.size()])) {
      modifier = text.substr(0, word.size());
      text = Trim(text.substr(word.size()));
      break;
    }
  }
  std::string_view names = text, type, defaultValue;
  const size_t colon = FindTopLevel(text, ':', false, false);
  if (colon != std::string_view::npos) {
    names = Trim(text.substr(0, colon));
    type = Trim(text.substr(colon + 1));
    const size_t eq = FindTopLevel(type, '=', false, false);
    if (eq != std::string_view::npos) {
      defaultValue = Trim(type.substr(eq + 1));
      type = Trim(type.substr(0, eq));
    }
  }
  bool named = false;
  for (size_t start = 0;;) {
    const size_t comma = names.find(',', start);
    const std::string_view name = Trim(names.substr(start, comma - start));
    if (!name.empty()) {
      list.Add(name, type, modifier, defaultValue);
      named = true;
    }
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  if (!named)
    list.Add({}, type, modifier, defaultValue);  // ": Integer" alone: one unnamed parameter
}

}  // namespace

// ---- TParameter ----

std::string TParameter::GetText(unsigned options) const {
  std::string s;
  if (IsCpp(Language)) {
    // The blank that follows the type stays in the names-only form.
    if (options & toNamesOnly) return " " + Name;
    s = ParamType;
    if (!Name.empty()) s += " " + Name;
    s += Modifier;
  } else {
    if (options & toNamesOnly) return Name;
    if (!Modifier.empty()) s = Modifier + " ";
    s += Name;
    if (!ParamType.empty()) s += ": " + ParamType;
  }
  if (!DefaultValue.empty()) s += " = " + DefaultValue;
  return s;
}

void TParameter::LoadFromStream(TStream& stream) {
  Name = LoadString(stream);
  Modifier = LoadString(stream);
  ParamType = LoadString(stream);
  DefaultValue = LoadString(stream);
}

void TParameter::SaveToStream(TStream& stream) const {
  stream.WriteString(Name);
  stream.WriteString(Modifier);
  stream.WriteString(ParamType);
  stream.WriteString(DefaultValue);
}

// ---- TParameterList ----

TParameter& TParameterList::Add(std::string_view name, std::string_view paramType,
                                std::string_view modifier, std::string_view defaultValue) {
  TParameter& p = Items.emplace_back(Language);
  p.Name = name;
  p.ParamType = paramType;
  p.Modifier = modifier;
  p.DefaultValue = defaultValue;
  return p;
}

std::string TParameterList::GetText(unsigned options) const {
  const char* separator = IsCpp(Language) ? ", " : "; ";
  std::string s;
  for (size_t i = 0; i < Items.size(); ++i) {
    if (i > 0) s += separator;
    s += Items[i].GetText(options);
  }
  return s;
}

void TParameterList::Parse(std::string_view text) {
  Items.clear();
  text = Trim(text);
  // At most one parameter more than the separators: room for all of them at once.
  if (!text.empty() && text != "void")
    Items.reserve(static_cast<size_t>(std::count_if(text.begin(), text.end(),
                                                    [](char c) { return c == ',' || c == ';'; })) +
                  1);
  if (IsCpp(Language)) {
    if (text == "void") return;
    ForEachCppParameter(text, [this](std::string_view part) { ReadCppParameter(part, *this); });
    return;
  }
  size_t start = 0;
  while (start <= text.size()) {
    const std::string_view rest = text.substr(start);
    size_t semi = FindTopLevel(rest, ';', false, false);
    if (semi == std::string_view::npos) semi = rest.size();
    ReadPascalGroup(rest.substr(0, semi), *this);
    start += semi + 1;
  }
}

namespace {

// Reads a type text as NormalizeTypeText writes it, one character at a time, so that two
// texts compare without building either: find-or-add compares the parameters of every
// overload it meets.
class TNormalizedTypeReader {
 public:
  explicit TNormalizedTypeReader(std::string_view text) : text_(text) {}
  /// The next character of the normalized text, or -1 at its end.
  int Next() {
    bool blank = false;
    while (at_ < text_.size() && IsBlank(text_[at_])) {
      blank = true;
      ++at_;
    }
    if (at_ == text_.size()) return -1;
    const char c = text_[at_];
    if (blank && last_ != 0 && IsIdentChar(last_) && IsIdentChar(c)) {
      last_ = ' ';
      return ' ';
    }
    last_ = c;
    ++at_;
    return static_cast<unsigned char>(c);
  }

 private:
  std::string_view text_;
  size_t at_ = 0;
  char last_ = 0;  // the character given last; 0 before the first (a NUL is a blank)
};

bool SameTypeText(std::string_view a, std::string_view b, bool caseSensitive) {
  if (a == b) return true;
  TNormalizedTypeReader ra(a), rb(b);
  for (;;) {
    int ca = ra.Next(), cb = rb.Next();
    if (!caseSensitive && ca >= 0 && cb >= 0) {
      ca = static_cast<unsigned char>(AnsiUpperChar(static_cast<char>(ca)));
      cb = static_cast<unsigned char>(AnsiUpperChar(static_cast<char>(cb)));
    }
    if (ca != cb) return false;
    if (ca < 0) return true;
  }
}

}  // namespace

bool TParameterList::SameAs(const TParameterList& other) const {
  if (Items.size() != other.Items.size()) return false;
  const bool caseSensitive = IsCpp(Language);
  for (size_t i = 0; i < Items.size(); ++i) {
    const TParameter& a = Items[i];
    const TParameter& b = other.Items[i];
    if (!SameTypeText(a.ParamType, b.ParamType, caseSensitive) ||
        !SameTypeText(a.Modifier, b.Modifier, caseSensitive))
      return false;
  }
  return true;
}

void TParameterList::LoadFromStream(TStream& stream) {
  Items.clear();
  // Each parameter takes at least 16 bytes, so a damaged count ends at the first short
  // read instead of growing the list.
  uint32_t n = LoadU32(stream);
  Items.reserve(std::min<int64_t>(n, stream.Remaining() / 16));
  for (; n > 0; --n) Items.emplace_back(Language).LoadFromStream(stream);
}

void TParameterList::SaveToStream(TStream& stream) const {
  stream.WriteU32(static_cast<uint32_t>(Items.size()));
  for (const TParameter& p : Items) p.SaveToStream(stream);
}

std::string NormalizeTypeText(std::string_view text) {
  std::string out;
  bool pendingBlank = false;
  for (char c : text) {
    if (IsBlank(c)) {
      pendingBlank = true;
      continue;
    }
    if (pendingBlank && !out.empty() && IsIdentChar(out.back()) && IsIdentChar(c)) out += ' ';
    pendingBlank = false;
    out += c;
  }
  return out;
}

}  // namespace velmora
