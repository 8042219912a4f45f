#include "codegen/code_markers.h"

#include "support/ansi.h"

namespace velmora {

namespace {

struct TStyle {
  std::string_view open;
  std::string_view close;
};
constexpr TStyle kStyles[] = {{"//", ""}, {"(*", "*)"}, {"{", "}"}, {"//", ""}, {"/*", "*/"}};

bool StartsWithText(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && SameText(text.substr(0, prefix.size()), prefix);
}

// The comment without its delimiters: the opening of any style, and the matching closing
// when the comment has it (an unclosed comment runs to the end of the text).
std::string_view StripDelimiters(std::string_view comment) {
  comment = Trim(comment);
  for (const TStyle& style : kStyles) {
    if (comment.substr(0, style.open.size()) != style.open) continue;
    comment.remove_prefix(style.open.size());
    if (!style.close.empty() && comment.size() >= style.close.size() &&
        comment.substr(comment.size() - style.close.size()) == style.close) {
      comment.remove_suffix(style.close.size());
    }
    break;
  }
  return Trim(comment);
}

std::string ArgumentAfter(std::string_view text, std::string_view name) {
  std::string_view rest = Trim(text.substr(name.size()));
  if (!rest.empty() && rest.front() == '(') rest.remove_prefix(1);
  if (!rest.empty() && rest.back() == ')') rest.remove_suffix(1);
  return std::string(Trim(rest));
}

}  // namespace

std::string_view MarkerName(int kind) {
  switch (kind) {
    case mkInsertEnd:
      return "Marker(Insert_End)";
    case mkClassMethod:
      return "ClassMarker_Method";
    case mkMethodMarker:
      return "Method_Marker";
    case mkDescBegin:
      return "VL_Desc_Begin";
    case mkDescEnd:
      return "VL_Desc_End";
    case mkDescInclude:
      return "VL_Desc_Include";
    default:
      return "";
  }
}

bool MarkerHasArgument(int kind) {
  return kind == mkClassMethod || kind == mkMethodMarker || kind == mkDescBegin ||
         kind == mkDescInclude;
}

std::string MarkerText(int kind, int style, std::string_view argument) {
  const std::string_view name = MarkerName(kind);
  if (name.empty() || style < 0 || style >= static_cast<int>(std::size(kStyles))) return {};
  std::string text(kStyles[style].open);
  text += name;
  if (MarkerHasArgument(kind)) {
    text += '(';
    text += argument;
    text += ')';
  }
  text += kStyles[style].close;
  return text;
}

int MarkerStyleForSetting(TLanguage language, int32_t setting) {
  if (language == TLanguage::Pascal) {
    return setting >= mcsPascalLine && setting <= mcsPascalBrace ? setting : mcsPascalLine;
  }
  if (setting == mcsCppLine || setting == mcsCppBlock) return setting;
  if (setting == 0 || setting == 1) return mcsCppLine + setting;
  return mcsCppLine;
}

TMarkerClass ClassifyComment(std::string_view comment) {
  const std::string_view text = StripDelimiters(comment);
  // The order matters: the longer names that share a start with a shorter one
  // ("VL_Desc_Include" and "VL_Desc_End" after "VL_Desc_Begin") are told apart by it.
  static constexpr struct {
    int kind;
    bool prefix;  // the name starts the text; otherwise it must be the whole text
  } kOrder[] = {{mkMethodMarker, true}, {mkDescBegin, true},   {mkDescEnd, false},
                {mkDescInclude, true},  {mkClassMethod, true}, {mkInsertEnd, false}};
  for (const auto& entry : kOrder) {
    const std::string_view name = MarkerName(entry.kind);
    const bool match = entry.prefix ? StartsWithText(text, name) : SameText(text, name);
    if (!match) continue;
    TMarkerClass result;
    result.Kind = entry.kind;
    if (MarkerHasArgument(entry.kind)) result.Argument = ArgumentAfter(text, name);
    return result;
  }
  return {};
}

}  // namespace velmora
