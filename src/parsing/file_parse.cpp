#include "parsing/file_parse.h"

#include <chrono>
#include <utility>

#include "support/paths.h"
#include "support/stream.h"
#include "support/stringlist.h"

namespace velmora {

TFileParse ParseText(const std::string& path, TLanguage language, std::string text,
                     const TParseOptions& options) {
  TFileParse parse;
  parse.Path = path;
  parse.UnitName = std::string(ExtractFileName(path));
  parse.Language = language;
  parse.WantPositions = options.WantPositions;
  parse.Classes = std::make_unique<TClasslist>();
  TStringList includes(false, TDuplicates::Accept, false);
  TMemoryStream stream(std::move(text));
  const auto start = std::chrono::steady_clock::now();
  ParseSourceText(language, parse.UnitName, stream, *parse.Classes, options, &includes);
  parse.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  parse.Bytes = stream.Size();
  parse.IncludeNames.reserve(includes.Count());
  for (int i = 0; i < includes.Count(); ++i) parse.IncludeNames.push_back(includes.Strings(i));
  return parse;
}

}  // namespace velmora
