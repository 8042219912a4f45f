#include "codegen/code_builder.h"

#include <algorithm>

#include "settings/code_templates.h"
#include "support/ansi.h"

namespace velmora {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The first place at or after `from` where `what` occurs in `text`, letter case aside;
// npos if none.
size_t FindText(std::string_view text, std::string_view what, size_t from) {
  if (what.empty() || what.size() > text.size()) return std::string_view::npos;
  for (size_t i = from; i + what.size() <= text.size(); ++i) {
    if (SameText(text.substr(i, what.size()), what)) return i;
  }
  return std::string_view::npos;
}

}  // namespace

void TCodeBuilder::SetParam(std::string_view name, std::string_view value) {
  if (name.empty()) return;
  struct TForm {
    char open;
    char close;
  };
  static constexpr TForm kForms[] = {{'%', '%'}, {'$', '%'}, {'%', '$'}, {'$', '$'}};
  for (const TForm& form : kForms) {
    std::string placeholder;
    placeholder.reserve(name.size() + 2);
    placeholder += form.open;
    placeholder += name;
    placeholder += form.close;
    if (FindText(value, placeholder, 0) != std::string_view::npos) continue;
    const bool dropBefore = form.open == '$';
    const bool dropAfter = form.close == '$';
    // The search goes on after the value just put in: text that the value and its
    // surroundings happen to spell together is not a placeholder of the template.
    size_t from = 0;
    for (;;) {
      const size_t at = FindText(text_, placeholder, from);
      if (at == std::string::npos) break;
      size_t start = at;
      size_t end = at + placeholder.size();
      if (value.empty()) {
        if (dropBefore && start > 0 && IsBlank(text_[start - 1])) --start;
        if (dropAfter && end < text_.size() && IsBlank(text_[end])) ++end;
      }
      text_.replace(start, end - start, value);
      from = start + value.size();
    }
  }
}

std::string BuildCode(const TCodeTemplate& codeTemplate, const std::vector<std::string>& values,
                      TLanguage language) {
  TCodeBuilder builder(codeTemplate.Template, language);
  const int count = std::min(codeTemplate.ParamCount, kTemplateParamSlots);
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<size_t>(i);
    builder.SetParam(codeTemplate.ParamNames[at],
                     at < values.size() ? std::string_view(values[at]) : std::string_view());
  }
  return builder.Text();
}

std::string JoinContinuedLines(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::string held;     // a backslash and the blanks after it, not yet written
  bool keptCr = false;  // the character written last is a CR
  for (const char c : text) {
    if (!held.empty() && IsBlank(c)) {
      held += c;
      continue;
    }
    if (c == '\r') {
      if (held.empty()) {
        out += c;
        keptCr = true;
      } else {
        held.clear();  // the continuation: backslash, blanks and line end go
        keptCr = false;
      }
      continue;
    }
    if (c == '\n') {
      if (keptCr) out += c;
      keptCr = false;
      continue;
    }
    out += held;
    held.clear();
    keptCr = false;
    if (c == '\\') {
      held = c;
    } else {
      out += c;
    }
  }
  out += held;  // a backslash at the very end joins nothing
  return out;
}

}  // namespace velmora
