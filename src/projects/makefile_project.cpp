// C++Builder projects of versions 1 to 4: a make-file whose macros name the object files
// and the compiler switches, followed by the IDE's ini block between `!ifdef IDEOPTIONS`
// and `!endif`, then the make rules.
#include <map>

#include "projects/bcb_options.h"
#include "support/ansi.h"
#include "support/paths.h"

namespace velmora::projects {

namespace {

bool IsNameChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The logical lines: physical lines joined where one ends in `\`, line ends of any style.
std::vector<std::string> LogicalLines(std::string_view text) {
  std::vector<std::string> lines;
  std::string current;
  bool continued = false;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    start = end + 1;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
      line.remove_suffix(1);
    const bool continues = !line.empty() && line.back() == '\\';
    if (continues) line.remove_suffix(1);
    if (continued) current += ' ';
    current += line;
    continued = continues;
    if (!continued) {
      lines.push_back(std::move(current));
      current.clear();
    }
  }
  if (continued) lines.push_back(std::move(current));
  return lines;
}

// The NAME of `if !$d(NAME)`, the other spelling of `ifndef NAME`; "" for any other.
std::string_view GuardedByIfNotDefined(std::string_view directive) {
  if (directive.size() < 3 || !SameText(directive.substr(0, 3), "if ")) return {};
  std::string_view rest = Trim(directive.substr(3));
  if (rest.size() < 5 || rest.substr(0, 4) != "!$d(" || rest.back() != ')') return {};
  return Trim(rest.substr(4, rest.size() - 5));
}

}  // namespace

TProject ReadMakefileProject(const std::string& path) {
  const std::string text = ReadProjectFile(path);
  TProjectBuilder builder(path, TProjectKind::MakeBpr);

  std::map<std::string, std::string> macros;
  // Macros defined under `!ifndef NAME`: the make-file's fallback for a value the
  // environment gives (BCB = $(MAKEDIR)\..). Only the environment's value counts here.
  std::vector<std::string> environmentOnly;
  std::string ideBlock;
  std::string guarded;  // the name of the innermost `!ifndef NAME` still open
  bool inIdeOptions = false;
  bool sawDefinition = false;

  for (const std::string& raw : LogicalLines(text)) {
    const std::string_view line = Trim(raw);
    if (inIdeOptions) {
      if (SameText(line, "!endif")) {
        inIdeOptions = false;
        continue;
      }
      ideBlock += line;
      ideBlock += '\n';
      continue;
    }
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '!') {
      const std::string_view directive = line.substr(1);
      if (directive.size() > 6 && SameText(directive.substr(0, 6), "ifdef ") &&
          SameText(Trim(directive.substr(6)), "IDEOPTIONS"))
        inIdeOptions = true;
      else if (directive.size() > 7 && SameText(directive.substr(0, 7), "ifndef "))
        guarded = std::string(Trim(directive.substr(7)));
      else if (const std::string_view name = GuardedByIfNotDefined(directive); !name.empty())
        guarded = std::string(name);
      else if (SameText(directive, "endif"))
        guarded.clear();
      continue;
    }
    size_t i = 0;
    while (i < line.size() && IsNameChar(line[i])) ++i;
    if (i == 0) continue;
    size_t eq = i;
    while (eq < line.size() && (line[eq] == ' ' || line[eq] == '\t')) ++eq;
    if (eq >= line.size() || line[eq] != '=') continue;  // a rule or a command
    const std::string name(line.substr(0, i));
    macros[name] = std::string(Trim(line.substr(eq + 1)));
    if (name == guarded) environmentOnly.push_back(name);
    sawDefinition = true;
  }
  if (!sawDefinition)
    throw EProjectError("\"" + std::string(ExtractFileName(path)) +
                        "\" is not a C++Builder project: it defines no make-file macros");

  const TBcbMacroValue macro = [&](std::string_view name) -> std::optional<std::string> {
    auto it = macros.find(std::string(name));
    if (it == macros.end()) return std::nullopt;
    return it->second;
  };
  const TMacroLookup expand = [&](std::string_view name) -> std::optional<std::string> {
    if (auto env = EnvironmentMacro(name)) return env;
    for (const std::string& e : environmentOnly)
      if (e == name) return std::nullopt;
    return macro(name);
  };
  ReadBcbOptions(builder, macro, expand, TIniText(ideBlock));
  return builder.Finish();
}

}  // namespace velmora::projects
