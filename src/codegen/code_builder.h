// TCodeBuilder: the placeholder substitution that turns a code template and its values
// into source text. A placeholder is a name between two delimiters, each "%" or "$"; a
// "$" on a side means that, when the value is empty, one blank on that side goes with the
// placeholder, so optional parts leave no double blanks behind. Names are found without
// regard to letter case.
//
// Threads: a builder is a plain value, used by one thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"

namespace velmora {

struct TCodeTemplate;

class TCodeBuilder {
 public:
  TCodeBuilder(std::string_view templateText, TLanguage language)
      : text_(templateText), language_(language) {}

  /// Puts `value` in for every placeholder of `name` in its four forms, in this order:
  /// %NAME%, $NAME% (drops a blank before), %NAME$ (drops a blank after), $NAME$ (both).
  /// For an empty value, at most one blank is removed per side, on purpose: two blanks
  /// before an empty "$"-led placeholder leave one standing. A form that occurs in the
  /// value itself is left alone, so a value can never make the substitution endless.
  void SetParam(std::string_view name, std::string_view value);

  const std::string& Text() const { return text_; }
  TLanguage Language() const { return language_; }

 private:
  std::string text_;    // the template with the values set so far
  TLanguage language_;  // of the source the text is for
};

/// The template's text with each of its parameters set, in the record's order, to the
/// value at the same place (missing values are empty).
std::string BuildCode(const TCodeTemplate& codeTemplate, const std::vector<std::string>& values,
                      TLanguage language);

/// The text with every line continuation joined: a backslash followed only by blanks up
/// to the line end is dropped with those blanks and the line end, so a continued line
/// reads as one. Any other backslash and blanks are kept as they are; a LF is kept only
/// after a kept CR (the text is in buffer form).
std::string JoinContinuedLines(std::string_view text);

}  // namespace velmora
