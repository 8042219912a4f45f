// The C++ and Pascal code finders on any bytes, loaded as a source file is (buffer form).
// The names looked for are taken from the text itself, so that the searches get past the
// raw-text hits into the token checks: the first, a middle and the last identifier, each
// as class, method and routine name. Every answer must be -1 or the first token of a line,
// and its line and offset variants must agree with it.
#include <vector>

#include "fuzz_support.h"
#include "model/parameters.h"
#include "parsing/cpp_code_finder.h"
#include "parsing/pascal_code_finder.h"
#include "support/text_buffer.h"

using namespace velmora;

namespace {

// Names of identifier tokens picked across the text (at most three).
std::vector<std::string> PickNames(TTokenizer& t, int identifierKind) {
  std::vector<int32_t> identifiers;
  for (int32_t i = 0; i < t.LastIndex(); ++i) {
    if (t.Kinds().Get(i) == identifierKind) identifiers.push_back(i);
  }
  std::vector<std::string> names;
  if (identifiers.empty()) return {"x"};
  for (const size_t at : {size_t{0}, identifiers.size() / 2, identifiers.size() - 1}) {
    names.push_back(t.TokenText(identifiers[at]));
  }
  return names;
}

// A token answer: -1, or a token that starts its line.
void CheckLineStart(TTokenizer& t, int32_t token, int lineCommentKind) {
  if (token == -1) return;
  VELMORA_FUZZ_CHECK(token >= 0 && token < t.LastIndex());
  if (token == 0) return;
  const int before = t.Kinds().Get(token - 1);
  VELMORA_FUZZ_CHECK(before == tkLineEnd || before == lineCommentKind);
}

template <typename Finder>
void CheckVariants(const std::string& text, int32_t token, int32_t line, int32_t offset) {
  Finder f;
  f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  VELMORA_FUZZ_CHECK((token == -1) == (line == -1));
  VELMORA_FUZZ_CHECK((token == -1) == (offset == -1));
  if (token == -1) return;
  VELMORA_FUZZ_CHECK(f.Tokenizer().LineOfToken(token) == line);
  VELMORA_FUZZ_CHECK(f.Tokenizer().TokenOffset(token) == offset);
}

void CheckCpp(const std::string& text) {
  TCppCodeFinder names;
  names.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const std::vector<std::string> picked = PickNames(names.Tokenizer(), ctIdentifier);
  TParameterList list(TLanguage::Cpp);
  list.Parse("int, char*");
  const TParameterList* const lists[] = {nullptr, &list};
  for (const std::string& cls : picked) {
    for (const std::string& method : picked) {
      for (const TParameterList* p : lists) {
        TCppCodeFinder a, b, c;
        for (TCppCodeFinder* f : {&a, &b, &c})
          f->SetText(text.c_str(), static_cast<int32_t>(text.size()));
        const int32_t t = a.FindMethodImplementation(cls, method, p);
        CheckLineStart(a.Tokenizer(), t, ctLineComment);
        CheckVariants<TCppCodeFinder>(text, t, b.FindMethodImplementationLine(cls, method, p),
                                      c.FindMethodImplementationOffset(cls, method, p));
        TCppCodeFinder d;
        d.SetText(text.c_str(), static_cast<int32_t>(text.size()));
        CheckLineStart(d.Tokenizer(), d.FindMethodImplementation(cls, "~" + method, p),
                       ctLineComment);
      }
    }
    for (const TParameterList* p : lists) {
      TCppCodeFinder a, b, c;
      for (TCppCodeFinder* f : {&a, &b, &c})
        f->SetText(text.c_str(), static_cast<int32_t>(text.size()));
      const int32_t t = a.FindRoutineImplementation(cls, p);
      CheckLineStart(a.Tokenizer(), t, ctLineComment);
      CheckVariants<TCppCodeFinder>(text, t, b.FindRoutineImplementationLine(cls, p),
                                    c.FindRoutineImplementationOffset(cls, p));
    }
  }
}

void CheckPascal(const std::string& text) {
  TPascalCodeFinder names;
  names.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const std::vector<std::string> picked = PickNames(names.Tokenizer(), ptIdentifier);
  for (const std::string& cls : picked) {
    for (const std::string& method : picked) {
      TPascalCodeFinder a, b, c;
      for (TPascalCodeFinder* f : {&a, &b, &c})
        f->SetText(text.c_str(), static_cast<int32_t>(text.size()));
      const int32_t t = a.FindMethodImplementation(cls, method);
      CheckLineStart(a.Tokenizer(), t, ptLineComment);
      CheckVariants<TPascalCodeFinder>(text, t, b.FindMethodImplementationLine(cls, method),
                                       c.FindMethodImplementationOffset(cls, method));
    }
    TPascalCodeFinder a, b, c, d;
    for (TPascalCodeFinder* f : {&a, &b, &c, &d})
      f->SetText(text.c_str(), static_cast<int32_t>(text.size()));
    const int32_t t = a.FindRoutineImplementation(cls);
    CheckLineStart(a.Tokenizer(), t, ptLineComment);
    CheckVariants<TPascalCodeFinder>(text, t, b.FindRoutineImplementationLine(cls),
                                     c.FindRoutineImplementationOffset(cls));
    const int32_t id = d.FindIdentifier(cls);
    VELMORA_FUZZ_CHECK(id == -1 || (id >= 0 && id < d.Tokenizer().LastIndex()));
  }
  for (const bool useInitialization : {false, true}) {
    TPascalCodeFinder f;
    f.SetText(text.c_str(), static_cast<int32_t>(text.size()));
    const int32_t t = f.FindUnitEnd(useInitialization);
    // The walk to the line start stops at a line end only.
    VELMORA_FUZZ_CHECK(t == -1 || t == 0 || f.Tokenizer().Kinds().Get(t - 1) == tkLineEnd);
  }
  TPascalCodeFinder s;
  s.SetText(text.c_str(), static_cast<int32_t>(text.size()));
  const int32_t section = s.FindImplementationSection();
  VELMORA_FUZZ_CHECK(section == -1 || s.Tokenizer().Kinds().Get(section) == ptImplementation);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = ToBufferForm(fuzz::AsText(data, size));
  CheckCpp(text);
  CheckPascal(text);
  return 0;
}
