#include "codegen/marker_position_finder.h"

#include "model/class_description.h"
#include "model/members.h"
#include "parsing/cpp_tokenizer.h"
#include "parsing/pascal_code_finder.h"
#include "parsing/pascal_tokenizer.h"
#include "support/ansi.h"

namespace velmora {

TMarkerPositionFinder::TMarkerPositionFinder(TLanguage language, const std::string& text) {
  if (language == TLanguage::Pascal) {
    owned_ = std::make_unique<TPascalTokenizer>();
  } else {
    owned_ = std::make_unique<TCPPTokenizer>();
  }
  tokenizer_ = owned_.get();
  tokenizer_->SetText(text.c_str(), static_cast<int32_t>(text.size()));
}

TMarkerPositionFinder::TMarkerPositionFinder(TTokenizer& tokenizer) : tokenizer_(&tokenizer) {}

TMarkerPositionFinder::~TMarkerPositionFinder() = default;

TMarker TMarkerPositionFinder::NextMarker() {
  const TIList& kinds = tokenizer_->Kinds();
  const int32_t last = tokenizer_->LastIndex();
  while (next_ < last) {
    const int32_t i = next_++;
    if (!tokenizer_->IsComment(kinds.Get(i))) continue;
    TMarkerClass marker = ClassifyComment(tokenizer_->TokenView(i));
    if (marker.Kind == mkNone) continue;
    // Counted from the text: a literal that runs over line ends is not seen by the
    // tracked line, and the count resumes where the last question left it.
    lastLine_ = tokenizer_->LineOfToken(i);
    return {marker.Kind, std::move(marker.Argument), lastLine_};
  }
  lastLine_ = -1;
  return {};
}

int32_t TMarkerPositionFinder::FindMarker(TLanguage language, const std::string& text, int kind,
                                          std::optional<std::string_view> argument) {
  TMarkerPositionFinder finder(language, text);
  for (TMarker m = finder.NextMarker(); m.Line != -1; m = finder.NextMarker()) {
    if (m.Kind == kind && (!argument || SameText(m.Argument, *argument))) return m.Line;
  }
  return -1;
}

namespace {

// FindMethodImplementationLine's search, over the markers `finder` has still to return.
int32_t MethodMarkerLine(TMarkerPositionFinder& finder, std::string_view className,
                         std::string_view methodName, bool ordered, bool* isMethodMarker) {
  if (isMethodMarker) *isMethodMarker = false;
  for (TMarker m = finder.NextMarker(); m.Line != -1; m = finder.NextMarker()) {
    if (m.Kind == mkInsertEnd) return m.Line;
    if (m.Kind == mkClassMethod && SameText(m.Argument, className)) return m.Line;
    if (m.Kind == mkMethodMarker && ordered) {
      const std::string_view argument = m.Argument;
      const size_t dot = argument.find('.');
      if (dot == std::string_view::npos) continue;
      if (!SameText(argument.substr(0, dot), className)) continue;
      if (CompareText(argument.substr(dot + 1), methodName) < 0) continue;
      if (isMethodMarker) *isMethodMarker = true;
      return m.Line;
    }
  }
  return -1;
}

}  // namespace

int32_t TMarkerPositionFinder::FindMethodImplementationLine(TLanguage language,
                                                            const std::string& text,
                                                            std::string_view className,
                                                            std::string_view methodName,
                                                            bool ordered, bool* isMethodMarker) {
  TMarkerPositionFinder finder(language, text);
  return MethodMarkerLine(finder, className, methodName, ordered, isMethodMarker);
}

int32_t MethodImplementationLine(TLanguage language, const std::string& text,
                                 const TClassDescription& cls, std::string_view methodName,
                                 bool ordered) {
  if (language == TLanguage::Cpp)
    return TMarkerPositionFinder::FindMethodImplementationLine(language, text, cls.Name, methodName,
                                                               ordered);

  // One tokenizing of the unit serves the markers and the searches for implementations:
  // in a unit of megabytes it is most of the time of this call.
  TPascalCodeFinder finder;
  finder.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  bool isMethodMarker = false;
  TMarkerPositionFinder markers(finder.Tokenizer());
  const int32_t markerLine =
      MethodMarkerLine(markers, cls.Name, methodName, ordered, &isMethodMarker);
  int32_t line = markerLine;
  if (!isMethodMarker && ordered) {
    // The first method of the class that sorts after the new one; the list is sorted by
    // name, letter case aside, as Pascal names are.
    const TMethodDescription* after = nullptr;
    for (int i = 0; i < cls.Methods.Count(); ++i) {
      const TMethodDescription* m = cls.Methods.Items(i);
      if (CompareText(m->Name, methodName) > 0 &&
          (after == nullptr || CompareText(m->Name, after->Name) < 0)) {
        after = m;
      }
    }
    if (after != nullptr) {
      const int32_t found = finder.FindMethodImplementationLine(cls.Name, after->Name);
      if (found != -1 && (markerLine == -1 || found < markerLine)) line = found;
    }
  }
  if (line == -1) line = finder.FindUnitEndLine(true);
  return line;
}

}  // namespace velmora
