#include "parsing/source_parser.h"

#include "model/class_list.h"
#include "parsing/cpp_parser.h"
#include "parsing/pascal_parser.h"
#include "support/ansi.h"
#include "support/paths.h"
#include "support/stream.h"

namespace velmora {

TLanguage LanguageOfFile(std::string_view path) {
  const std::string_view ext = ExtractFileExt(path);
  for (std::string_view known : {".c", ".cpp", ".cxx", ".cc", ".h", ".hpp", ".hxx"})
    if (SameText(ext, known)) return TLanguage::Cpp;
  return TLanguage::Pascal;
}

bool IsHeaderFile(std::string_view path) {
  const std::string_view ext = ExtractFileExt(path);
  return SameText(ext, ".h") || SameText(ext, ".hpp") || SameText(ext, ".hxx");
}

namespace {

template <class Parser>
void Run(Parser& parser, const TParseOptions& options, TStringList* includeNames) {
  parser.WantPositions = options.WantPositions;
  parser.Parse();
  if (!includeNames) return;
  for (int i = 0; i < parser.IncludeNames.Count(); ++i)
    includeNames->Add(parser.IncludeNames.Strings(i));
}

}  // namespace

void ParseSourceText(TLanguage language, std::string_view unitName, const TMemoryStream& text,
                     TClasslist& target, const TParseOptions& options, TStringList* includeNames) {
  if (language == TLanguage::Cpp) {
    TCPPFileParser parser(unitName, 0, &target, &text);
    Run(parser, options, includeNames);
  } else {
    TPascalFileParser parser(unitName, 0, &target, &text);
    parser.ParseImplementation = options.ParseImplementation;
    Run(parser, options, includeNames);
  }
}

}  // namespace velmora
