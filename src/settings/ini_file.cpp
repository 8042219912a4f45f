#include "settings/ini_file.h"

#include "support/ansi.h"

namespace velmora {
namespace {

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

// Bytes that would not survive a bare write: line breaks end the line, and the other
// control characters are made visible so that a file stays readable text.
bool NeedsEscape(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u < ' ' || u == 0x7F;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A name as it can stand on one line.
std::string OneLine(std::string_view name) {
  std::string out(name);
  for (char& c : out)
    if (c == '\r' || c == '\n') c = ' ';
  return out;
}

}  // namespace

std::string EncodeIniValue(std::string_view value) {
  bool quote =
      !value.empty() && (IsBlank(value.front()) || IsBlank(value.back()) || value.front() == '"');
  for (size_t i = 0; !quote && i < value.size(); ++i) quote = NeedsEscape(value[i]);
  if (!quote) return std::string(value);

  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(value.size() + 8);
  out += '"';
  for (const char c : value) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '"':
        out += "\\\"";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (NeedsEscape(c)) {
          const auto u = static_cast<unsigned char>(c);
          out += "\\x";
          out += kHex[u >> 4];
          out += kHex[u & 15];
        } else {
          out += c;
        }
    }
  }
  out += '"';
  return out;
}

std::string DecodeIniValue(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::string(text);
  const std::string_view inner = text.substr(1, text.size() - 2);
  std::string out;
  out.reserve(inner.size());
  for (size_t i = 0; i < inner.size(); ++i) {
    const char c = inner[i];
    if (c != '\\' || i + 1 == inner.size()) {
      out += c;
      continue;
    }
    const char next = inner[i + 1];
    switch (next) {
      case '\\':
        out += '\\';
        ++i;
        break;
      case '"':
        out += '"';
        ++i;
        break;
      case 'r':
        out += '\r';
        ++i;
        break;
      case 'n':
        out += '\n';
        ++i;
        break;
      case 't':
        out += '\t';
        ++i;
        break;
      case 'x': {
        const int hi = i + 2 < inner.size() ? HexDigit(inner[i + 2]) : -1;
        const int lo = i + 3 < inner.size() ? HexDigit(inner[i + 3]) : -1;
        if (hi >= 0 && lo >= 0) {
          out += static_cast<char>(hi * 16 + lo);
          i += 3;
        } else {
          out += c;  // not an escape after all: keep the backslash as written
        }
        break;
      }
      default:
        // A hand-written path such as "C:\Kiln" keeps its backslashes.
        out += c;
    }
  }
  return out;
}

bool TIniFile::NoCaseLess::operator()(std::string_view a, std::string_view b) const {
  return CompareText(a, b) < 0;
}

TIniFile::TIniFile(const TIniFile& other)
    : Header(other.Header), BlankLineBetweenSections(other.BlankLineBetweenSections) {
  for (const auto& s : other.sections_) {
    sections_.push_back(std::make_unique<Stored>(*s));
    index_.emplace(sections_.back()->Name, sections_.back().get());
  }
}

TIniFile& TIniFile::operator=(const TIniFile& other) {
  if (this != &other) *this = TIniFile(other);
  return *this;
}

void TIniFile::Clear() {
  sections_.clear();
  index_.clear();
  Header.clear();
}

TIniFile::Stored* TIniFile::Lookup(std::string_view name) const {
  const auto it = index_.find(name);
  return it == index_.end() ? nullptr : it->second;
}

TIniFile::Stored& TIniFile::Add(std::string_view name) {
  if (Stored* s = Lookup(name)) return *s;
  sections_.push_back(std::make_unique<Stored>());
  Stored& s = *sections_.back();
  s.Name = std::string(name);
  index_.emplace(s.Name, &s);
  return s;
}

TIniFile::Section& TIniFile::AddSection(std::string_view name) {
  return Add(name);
}

const TIniFile::Section* TIniFile::FindSection(std::string_view name) const {
  return Lookup(name);
}

TIniFile TIniFile::Parse(std::string_view text) {
  TIniFile ini;
  Stored* current = nullptr;
  size_t pos = 0;
  while (pos < text.size()) {
    // One line: up to LF, CR LF or a lone CR.
    size_t end = pos;
    while (end < text.size() && text[end] != '\n' && text[end] != '\r') ++end;
    std::string_view line = Trim(text.substr(pos, end - pos));
    pos = end;
    if (pos < text.size())
      pos += text[pos] == '\r' && pos + 1 < text.size() && text[pos + 1] == '\n' ? 2 : 1;

    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      std::string_view name = line.substr(1);
      const size_t close = name.rfind(']');
      if (close != std::string_view::npos) name = name.substr(0, close);
      current = &ini.Add(Trim(name));
      continue;
    }
    const size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;  // not a value line: ignored
    const std::string_view key = Trim(line.substr(0, eq));
    if (key.empty()) continue;
    if (!current) current = &ini.Add("");
    if (current->Index.find(key) != current->Index.end()) continue;  // the first one counts
    current->Index.emplace(std::string(key), current->Entries.size());
    current->Entries.push_back({std::string(key), DecodeIniValue(Trim(line.substr(eq + 1)))});
  }
  return ini;
}

std::string TIniFile::Text(std::string_view lineEnd) const {
  std::string out;
  bool block = false;  // whether something stands before the next block
  for (const std::string& line : Header) {
    out += line;
    out += lineEnd;
    block = true;
  }
  for (const auto& s : sections_) {
    if (block && BlankLineBetweenSections) out += lineEnd;
    for (const std::string& line : s->Leading) {
      out += line;
      out += lineEnd;
    }
    out += '[';
    out += OneLine(s->Name);
    out += ']';
    out += lineEnd;
    for (const Entry& e : s->Entries) {
      out += OneLine(e.Key);
      out += '=';
      out += EncodeIniValue(e.Value);
      out += lineEnd;
    }
    block = true;
  }
  return out;
}

const std::string* TIniFile::Find(std::string_view section, std::string_view key) const {
  const Stored* s = Lookup(section);
  if (!s) return nullptr;
  const auto it = s->Index.find(key);
  return it == s->Index.end() ? nullptr : &s->Entries[it->second].Value;
}

std::string TIniFile::ReadString(std::string_view section, std::string_view key,
                                 std::string_view def) const {
  const std::string* v = Find(section, key);
  return v ? *v : std::string(def);
}

bool TIniFile::WriteString(std::string_view section, std::string_view key, std::string_view value) {
  const bool newSection = !Lookup(section);
  Stored& s = Add(section);
  const auto it = s.Index.find(key);
  if (it != s.Index.end()) {
    std::string& old = s.Entries[it->second].Value;
    if (old == value) return newSection;
    old = std::string(value);
    return true;
  }
  s.Index.emplace(std::string(key), s.Entries.size());
  s.Entries.push_back({std::string(key), std::string(value)});
  return true;
}

bool TIniFile::DeleteKey(std::string_view section, std::string_view key) {
  Stored* s = Lookup(section);
  if (!s) return false;
  const auto it = s->Index.find(key);
  if (it == s->Index.end()) return false;
  const size_t at = it->second;
  s->Index.erase(it);
  s->Entries.erase(s->Entries.begin() + static_cast<std::ptrdiff_t>(at));
  for (auto& [name, i] : s->Index)
    if (i > at) --i;
  return true;
}

bool TIniFile::SectionExists(std::string_view section) const {
  return Lookup(section) != nullptr;
}

bool TIniFile::ValueExists(std::string_view section, std::string_view key) const {
  return Find(section, key) != nullptr;
}

bool TIniFile::EraseSection(std::string_view section) {
  const auto it = index_.find(section);
  if (it == index_.end()) return false;
  const Stored* s = it->second;
  index_.erase(it);
  for (auto p = sections_.begin(); p != sections_.end(); ++p)
    if (p->get() == s) {
      sections_.erase(p);
      break;
    }
  return true;
}

}  // namespace velmora
