#include "parsing/implementation_locator.h"

#include <exception>

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

int32_t Locate(const std::string& text, const TClassDescription* classDescription,
               const TMethodDescription& member, TAnswer answer) {
  const auto size = static_cast<int32_t>(text.size());
  if (member.Language == TLanguage::Pascal) {
    TPascalCodeFinder finder;
    finder.SetText(text.c_str(), size);
    const int32_t t = classDescription != nullptr
                          ? finder.FindMethodImplementation(classDescription->Name, member.Name)
                          : finder.FindRoutineImplementation(member.Name);
    if (t < 0) return -1;
    return answer == TAnswer::Line ? finder.Tokenizer().LineOfToken(t)
                                   : finder.Tokenizer().TokenOffset(t);
  }
  const TParameterList* params = ParametersToMatch(classDescription, member);
  TCppCodeFinder finder;
  finder.SetText(text.c_str(), size);
  int32_t t = -1;
  if (classDescription != nullptr) {
    t = finder.FindMethodImplementation(classDescription->Name, member.Name, params);
  } else if (dynamic_cast<const TProcDescription*>(&member) != nullptr) {
    t = finder.FindRoutineImplementation(member.Name, params);
  }
  if (t < 0) return -1;
  return answer == TAnswer::Line ? finder.Tokenizer().LineOfToken(t)
                                 : finder.Tokenizer().TokenOffset(t);
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
