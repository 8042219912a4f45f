#include "parsing/implementation_locator.h"

#include <cstring>
#include <exception>
#include <memory>
#include <mutex>

#include "model/class_description.h"
#include "model/members.h"
#include "parsing/cpp_code_finder.h"
#include "parsing/pascal_code_finder.h"
#include "support/text_buffer.h"

namespace velmora {

namespace {

// The member's parameters when its name is overloaded in the list that holds it (the
// class's methods, or the routine's list), else null: a name without a twin matches
// whatever parameters the text has.
const TParameterList* ParametersToMatch(const TClassDescription* classDescription,
                                        const TMethodDescription& member) {
  const TMethodDescriptionList* list = nullptr;
  if (classDescription != nullptr) {
    list = &classDescription->Methods;
  } else if (const auto* routine = dynamic_cast<const TProcDescription*>(&member)) {
    list = routine->Owner;
  }
  if (list == nullptr) return nullptr;
  const int i = list->IndexOf(&member);
  if (i >= 0) return list->IsOverloaded(i) ? &member.Parameters : nullptr;
  // A member that is not (or no longer) an entry of the list: overloaded when the list
  // holds two of its name.
  const int first = list->IndexOfName(member.Name);
  return first >= 0 && list->IsOverloaded(first) ? &member.Parameters : nullptr;
}

enum class TAnswer { Line, Offset };

// The finder of the text searched last, one per language. Tokenizing the whole file is
// nearly all the time of a lookup, and jumping around in one unchanged buffer (the class
// view's "Go to Implementation", a language server's definition requests) asks about the
// same text again and again. The text is compared whole, so a changed buffer is never
// answered from stale tokens; the answers are those of a new finder, since every search
// sets the cursor and the pattern it works from. Texts above kMaxCachedSize are not kept.
template <typename Finder>
class TFinderCache {
 public:
  static constexpr size_t kMaxCachedSize = 32u << 20;

  /// `use(finder)` on a finder over `text`, under the cache's lock.
  template <typename Use>
  int32_t With(const std::string& text, Use use) {
    if (text.size() > kMaxCachedSize) {
      Finder finder;
      finder.SetText(text.c_str(), static_cast<int32_t>(text.size()));
      return use(finder);
    }
    std::lock_guard<std::mutex> lock(mutex_);
    if (!finder_ || text_.size() != text.size() ||
        std::memcmp(text_.data(), text.data(), text.size()) != 0) {
      finder_.reset();
      text_ = text;
      finder_ = std::make_unique<Finder>();
      finder_->SetText(text_.c_str(), static_cast<int32_t>(text_.size()));
    }
    return use(*finder_);
  }

 private:
  std::mutex mutex_;
  std::string text_;                // the text finder_ was made over; finder_ points into it
  std::unique_ptr<Finder> finder_;  // null until the first lookup
};

TFinderCache<TPascalCodeFinder> gPascalFinders;
TFinderCache<TCppCodeFinder> gCppFinders;

int32_t Locate(const std::string& text, const TClassDescription* classDescription,
               const TMethodDescription& member, TAnswer answer) {
  const auto answerOf = [answer](TTokenizer& tokenizer, int32_t t) {
    if (t < 0) return -1;
    return answer == TAnswer::Line ? tokenizer.LineOfToken(t) : tokenizer.TokenOffset(t);
  };
  if (member.Language == TLanguage::Pascal) {
    return gPascalFinders.With(text, [&](TPascalCodeFinder& finder) {
      const int32_t t = classDescription != nullptr
                            ? finder.FindMethodImplementation(classDescription->Name, member.Name)
                            : finder.FindRoutineImplementation(member.Name);
      return answerOf(finder.Tokenizer(), t);
    });
  }
  // A method without its class is not looked for: the routine search would take any
  // function of that name.
  const bool isRoutine = dynamic_cast<const TProcDescription*>(&member) != nullptr;
  if (classDescription == nullptr && !isRoutine) return -1;
  const TParameterList* params = ParametersToMatch(classDescription, member);
  return gCppFinders.With(text, [&](TCppCodeFinder& finder) {
    const int32_t t =
        classDescription != nullptr
            ? finder.FindMethodImplementation(classDescription->Name, member.Name, params)
            : finder.FindRoutineImplementation(member.Name, params);
    return answerOf(finder.Tokenizer(), t);
  });
}

}  // namespace

std::optional<std::string> ReadSourceTextFromDisk(const std::string& path) {
  try {
    return LoadSourceText(path);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool LocateImplementationLine(const std::string& text, bool useStored,
                              const TClassDescription* classDescription, int32_t& line,
                              const TMethodDescription& member) {
  if (useStored) {
    line = member.StartLine;
    return true;
  }
  line = Locate(text, classDescription, member, TAnswer::Line);
  return line != -1;
}

bool LocateImplementationOffset(const std::string& text, bool useStored,
                                const TClassDescription* classDescription, int32_t& offset,
                                const TMethodDescription& member) {
  if (useStored) {
    offset = member.StartOffset;
    return true;
  }
  offset = Locate(text, classDescription, member, TAnswer::Offset);
  return offset != -1;
}

bool LocateImplementationInFile(const std::string& fileName,
                                const TClassDescription* classDescription,
                                const TMethodDescription& member, int32_t& line,
                                const TSourceTextReader& reader) {
  line = -1;
  const std::optional<std::string> text =
      reader ? reader(fileName) : ReadSourceTextFromDisk(fileName);
  if (!text) return false;
  return LocateImplementationLine(*text, false, classDescription, line, member);
}

bool LocateImplementationInFiles(std::string& fileName, const std::vector<std::string>& fileList,
                                 bool useStored, int32_t& line, const TMethodDescription& member,
                                 const TClassDescription* classDescription,
                                 const TSourceTextReader& reader) {
  if (useStored) {
    line = member.StartLine;
    return true;
  }
  if (!fileName.empty() &&
      LocateImplementationInFile(fileName, classDescription, member, line, reader)) {
    return true;
  }
  for (const std::string& candidate : fileList) {
    if (LocateImplementationInFile(candidate, classDescription, member, line, reader)) {
      fileName = candidate;
      return true;
    }
  }
  line = -1;
  return false;
}

}  // namespace velmora
