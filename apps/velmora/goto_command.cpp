// `velmora goto [PROJECT] CLASS[::MEMBER] [--impl|--decl] [--params TEXT] [--json]`: where
// a class or member is declared, or where a method is implemented, as FILE:LINE.
#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "browse_common.h"
#include "command_line.h"
#include "commands.h"
#include "member_lookup.h"
#include "model/class_list.h"
#include "model/parameters.h"
#include "parsing/implementation_locator.h"
#include "parsing/source_parser.h"
#include "support/ansi.h"

namespace velmora::app {

namespace {

TClassDescription* FindIn(const TCommonClassList& list, std::string_view name, bool anyCase) {
  for (int i = 0; i < list.Count(); ++i) {
    TClassDescription* cls = list.Items(i);
    if (cls->Name == name || (anyCase && !cls->IsCpp() && SameText(cls->Name, name))) return cls;
  }
  for (int i = 0; i < list.Count(); ++i)
    if (const TCommonClassList* nested = list.Items(i)->NestedClassesIfAny())
      if (TClassDescription* found = FindIn(*nested, name, anyCase)) return found;
  return nullptr;
}

struct TGotoOptions {
  std::vector<std::string> Positionals;
  bool Impl = false;
  bool Decl = false;
  bool Json = false;
  std::string Params;
};

// The files where a method of `cls` may be implemented: the source beside a header, the
// declaring file, then every file of the model.
std::vector<std::string> ImplementationCandidates(const std::string& unitFile,
                                                  const std::vector<std::string>& all) {
  std::vector<std::string> files;
  if (IsHeaderFile(unitFile)) {
    const std::string stem = unitFile.substr(0, unitFile.rfind('.'));
    for (const char* ext : {".cpp", ".cc", ".cxx", ".c", ".CPP"})
      if (std::filesystem::exists(stem + ext)) files.push_back(stem + ext);
  }
  files.push_back(unitFile);
  for (const std::string& f : all)
    if (std::find(files.begin(), files.end(), f) == files.end()) files.push_back(f);
  return files;
}

void RunGoto(const TGotoOptions& o) {
  if (o.Positionals.empty() || o.Positionals.size() > 2)
    throw TCommandError("goto takes [PROJECT] CLASS[::MEMBER]", kExitUsage);
  if (o.Impl && o.Decl) throw TCommandError("--impl and --decl exclude each other", kExitUsage);
  const std::string project = o.Positionals.size() == 2 ? o.Positionals[0] : "";
  const std::string target = o.Positionals.back();
  auto session = OpenBrowseSession(project);
  SaveWhenChanged(*session);

  // CLASS or CLASS::MEMBER, where CLASS may itself be Outer::Inner.
  std::string className = target, memberName;
  TClassDescription* cls = FindClassByName(session->Classes(), target);
  if (!cls) {
    const size_t sep = target.rfind("::");
    if (sep == std::string::npos) throw TCommandError("no class '" + target + "' in the project");
    className = target.substr(0, sep);
    memberName = target.substr(sep + 2);
    cls = FindClassByName(session->Classes(), className);
    if (!cls) throw TCommandError("no class '" + className + "' in the project");
  }

  nlohmann::json out = {{"class", cls->Name}};
  const std::vector<std::string> modelFiles = session->WatchedFiles();
  std::string file = ResolveUnitFile(cls->UnitName, modelFiles);
  int32_t line = cls->StartLine;
  std::string kind = "class";
  if (!memberName.empty()) {
    out["member"] = memberName;
    TMethodDescription* method = nullptr;
    if (!o.Params.empty()) {
      TParameterList params(cls->Language);
      params.Parse(o.Params);
      method = cls->Methods.Find(memberName, params);
      if (!method)
        throw TCommandError("no method " + memberName + "(" + o.Params + ") in class '" +
                            cls->Name + "'");
    } else {
      method = cls->Methods.Find(memberName);
    }
    const TFieldDescription* field = method ? nullptr : cls->Fields.Find(memberName);
    if (!method && !field)
      throw TCommandError("no member '" + memberName + "' in class '" + cls->Name + "'");
    if (field) {
      if (o.Impl)
        throw TCommandError("'" + memberName + "' is not a method: it has no implementation");
      kind = field->IsProperty ? "property" : "field";
      line = field->StartLine;
      out["declaration"] = field->GetDeclaration(0);
    } else {
      kind = "method";
      line = method->StartLine;
      out["declaration"] = method->GetDeclaration(0);
      if (o.Impl) {
        std::string found;
        int32_t implLine = -1;
        if (!LocateImplementationInFiles(found, ImplementationCandidates(file, modelFiles), false,
                                         implLine, *method, cls))
          throw TCommandError("the implementation of " + cls->Name + "::" + memberName +
                              " was not found");
        file = found;
        line = implLine;
      }
    }
  } else if (o.Impl) {
    throw TCommandError("a class has no implementation; name a method (CLASS::METHOD)");
  }
  if (line < 0) throw TCommandError("the model records no line for " + target);
  if (o.Json) {
    out["kind"] = kind;
    out["file"] = file;
    out["line"] = line;
    out["implementation"] = o.Impl;
    std::cout << out.dump(2) << '\n';
  } else {
    std::cout << RelativeToCurrent(file) << ':' << line << '\n';
  }
}

}  // namespace

TClassDescription* FindClassByName(const TCommonClassList& list, std::string_view name) {
  const size_t sep = name.find("::");
  if (sep != std::string_view::npos) {
    // Outer::Inner: the inner class among the outer one's nested classes.
    TClassDescription* outer = FindClassByName(list, name.substr(0, sep));
    if (!outer || !outer->NestedClassesIfAny()) return nullptr;
    const std::string_view rest = name.substr(sep + 2);
    if (TClassDescription* c = FindIn(*outer->NestedClassesIfAny(), rest, false)) return c;
    return FindIn(*outer->NestedClassesIfAny(), rest, true);
  }
  if (TClassDescription* c = FindIn(list, name, false)) return c;
  return FindIn(list, name, true);
}

std::string ResolveUnitFile(const std::string& unitName, const std::vector<std::string>& files) {
  if (!unitName.empty() && unitName.front() == '/') return unitName;
  for (const std::string& f : files) {
    if (f.size() < unitName.size()) continue;
    const std::string_view tail = std::string_view(f).substr(f.size() - unitName.size());
    const bool atSeparator =
        f.size() == unitName.size() || f[f.size() - unitName.size() - 1] == '/';
    if (atSeparator && SameText(tail, unitName)) return f;
  }
  return unitName;
}

void AddGotoCommand(CLI::App& app) {
  auto options = std::make_shared<TGotoOptions>();
  CLI::App* cmd = app.add_subcommand(
      "goto",
      "Print FILE:LINE of a class's or member's declaration, or of a method's implementation");
  cmd->add_option("args", options->Positionals, "[PROJECT] CLASS[::MEMBER]")->required();
  cmd->add_flag("--impl", options->Impl, "the method's implementation");
  cmd->add_flag("--decl", options->Decl, "the declaration (the default)");
  cmd->add_option("--params", options->Params,
                  "the parameter list that picks an overload, e.g. \"int, char*\"");
  cmd->add_flag("--json", options->Json, "print an object with file, line, kind and declaration");
  cmd->callback([options] { RunGoto(*options); });
}

}  // namespace velmora::app
