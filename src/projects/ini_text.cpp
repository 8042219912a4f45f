#include "projects/ini_text.h"

#include "support/ansi.h"

namespace velmora::projects {

TIniText::TIniText(std::string_view text) {
  std::string section;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    const std::string_view line = Trim(text.substr(start, end - start));
    start = end + 1;
    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      section = std::string(Trim(line.substr(1, line.size() - 2)));
      continue;
    }
    const size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;
    entries_.push_back(
        {section, std::string(Trim(line.substr(0, eq))), std::string(Trim(line.substr(eq + 1)))});
  }
}

std::optional<std::string> TIniText::Value(std::string_view section, std::string_view key) const {
  for (const TEntry& e : entries_)
    if (SameText(e.Section, section) && SameText(e.Key, key)) return e.Value;
  return std::nullopt;
}

}  // namespace velmora::projects
