// A parse as a value: one file's text parsed into a class list nobody else sees, handed
// back with the include names its parser reported. Making one touches no shared state,
// so any thread may do it; putting it into a live model is the merge's business
// (parse_merge.h), on the thread that owns that model.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/class_list.h"
#include "parsing/source_parser.h"

namespace velmora {

struct TFileParse {
  std::string Path;      ///< the file as the caller (or the include walker) spelled it
  std::string UnitName;  ///< Path without its folders: the UnitName of its classes
  TLanguage Language = TLanguage::Pascal;  ///< the parser that read it
  bool WantPositions = false;              ///< whether the records carry positions
  /// The records of this file alone; never null in a TFileParse that ParseText made.
  std::unique_ptr<TClasslist> Classes;
  /// As the parser reported them: sorted, case-insensitive, each once.
  std::vector<std::string> IncludeNames;
  int64_t Bytes = 0;   ///< size of the text in buffer form
  double Seconds = 0;  ///< time the parser took, loading excluded
};

/// Parses `text` (buffer form, its NUL after size()) as the file `path` with the parser
/// of `language`. Thread-safe: shares nothing.
TFileParse ParseText(const std::string& path, TLanguage language, std::string text,
                     const TParseOptions& options);

}  // namespace velmora
