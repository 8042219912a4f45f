#include "hosts/lsp/source_texts.h"

#include <algorithm>

#include "support/text_buffer.h"

namespace velmora::lsp {

const TBufferText* TSourceTexts::Find(const std::string& path) {
  auto it = entries_.find(path);
  if (it == entries_.end()) {
    std::shared_ptr<const TBufferText> entry;
    if (const TDocument* doc = documents_.FindByPath(path))
      entry = doc->Buffer();
    else if (std::optional<std::string> text = ReadSourceTextFromDisk(path))
      entry = std::make_shared<const TBufferText>(std::move(*text));
    it = entries_.emplace(path, std::move(entry)).first;
  }
  return it->second.get();
}

const std::string* TSourceTexts::Text(const std::string& path) {
  const TBufferText* entry = Find(path);
  return entry ? &entry->Text : nullptr;
}

std::pair<TLspPosition, TLspPosition> TSourceTexts::Span(const std::string& path, int64_t from,
                                                         int64_t to) {
  TLspPosition start, end;
  if (const TBufferText* entry = Find(path)) {
    start = entry->Lines.ToLsp(std::max<int64_t>(from, 0), encoding_);
    end = entry->Lines.ToLsp(std::max(from, to), encoding_);
  }
  return {start, end};
}

json TSourceTexts::Range(const std::string& path, int64_t from, int64_t to) {
  const auto [start, end] = Span(path, from, to);
  return {{"start", {{"line", start.Line}, {"character", start.Character}}},
          {"end", {{"line", end.Line}, {"character", end.Character}}}};
}

json TSourceTexts::Location(const std::string& path, int64_t from, int64_t to) {
  return {{"uri", UriFromPath(path)}, {"range", Range(path, from, to)}};
}

int64_t TSourceTexts::Offset(const std::string& path, TLspPosition position) {
  const TBufferText* entry = Find(path);
  return entry ? entry->Lines.FromLsp(position, encoding_) : -1;
}

TSourceTextReader TSourceTexts::Reader() {
  return [this](const std::string& path) -> std::optional<std::string> {
    if (const std::string* text = Text(path)) return *text;
    return std::nullopt;
  };
}

void AppendJsonString(std::string& out, std::string_view text) {
  bool plain = true;
  for (char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x80 || c == '"' ||
        c == '\\') {
      plain = false;
      break;
    }
  if (!plain) {
    // The rare name with escapes or bytes past ASCII goes the library's careful way.
    out += json(std::string(text)).dump(-1, ' ', false, json::error_handler_t::replace);
    return;
  }
  out += '"';
  out += text;
  out += '"';
}

void AppendJsonRange(std::string& out, std::pair<TLspPosition, TLspPosition> range) {
  const auto position = [&out](TLspPosition p) {
    out += R"({"line":)";
    out += std::to_string(p.Line);
    out += R"(,"character":)";
    out += std::to_string(p.Character);
    out += '}';
  };
  out += R"({"start":)";
  position(range.first);
  out += R"(,"end":)";
  position(range.second);
  out += '}';
}

int64_t FindWord(const std::string& text, std::string_view name, int64_t from, int64_t to,
                 bool caseSensitive) {
  if (name.empty()) return -1;
  from = std::max<int64_t>(from, 0);
  to = std::min<int64_t>(to, static_cast<int64_t>(text.size()));
  const auto same = [&](char a, char b) {
    if (caseSensitive) return a == b;
    const auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; };
    return lower(a) == lower(b);
  };
  const int64_t n = static_cast<int64_t>(name.size());
  for (int64_t i = from; i + n <= to; ++i) {
    if (!same(text[i], name[0])) continue;
    if (i > 0 && IsIdentChar(text[i - 1]) && IsIdentChar(name[0])) continue;
    int64_t k = 1;
    while (k < n && same(text[i + k], name[k])) ++k;
    if (k < n) continue;
    if (i + n < static_cast<int64_t>(text.size()) && IsIdentChar(text[i + n])) continue;
    return i;
  }
  return -1;
}

}  // namespace velmora::lsp
