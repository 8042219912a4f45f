#include "parse_snippet.h"

#include <regex>

#include "model/class_list.h"
#include "model/model_text.h"
#include "parsing/cpp_parser.h"
#include "parsing/pascal_parser.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora {

namespace {

template <typename Parser>
void Run(Parser& parser, const TSnippetOptions& options, TParsedSnippet& parsed) {
  parser.WantPositions = options.WantPositions;
  parser.Parse();
  for (int i = 0; i < parser.IncludeNames.Count(); ++i)
    parsed.Includes.push_back(parser.IncludeNames.Strings(i));
}

}  // namespace

TParsedSnippet ParseSnippetInto(TClasslist& list, TLanguage language, std::string_view source,
                                const TSnippetOptions& options) {
  TParsedSnippet parsed;
  parsed.Text = ToBufferForm(source);
  const TMemoryStream stream(parsed.Text);
  if (language == TLanguage::Cpp) {
    TCPPFileParser parser(options.Unit.empty() ? "input.h" : options.Unit, 0, &list, &stream);
    Run(parser, options, parsed);
  } else {
    TPascalFileParser parser(options.Unit.empty() ? "u.pas" : options.Unit, 0, &list, &stream);
    parser.ParseImplementation = options.ParseImplementation;
    Run(parser, options, parsed);
    parsed.InImplementation = parser.InImplementation;
  }
  return parsed;
}

std::string DescribeParse(const TClasslist& list, const std::vector<std::string>& includes) {
  std::string out = DescribeModel(list);
  if (!includes.empty()) {
    out += "includes:";
    for (const std::string& name : includes) out += " " + name;
    out += '\n';
  }
  return out;
}

std::string WithoutPositions(const std::string& modelText) {
  static const std::regex kAt(" at -?\\d+:-?\\d+--?\\d+:-?\\d+");
  return std::regex_replace(modelText, kAt, "");
}

std::string ParseAndDescribe(TLanguage language, std::string_view source,
                             const TSnippetOptions& options) {
  TClasslist list;
  const TParsedSnippet parsed = ParseSnippetInto(list, language, source, options);
  return DescribeParse(list, parsed.Includes);
}

}  // namespace velmora
