// `velmora add-field|add-method|add-property [PROJECT] --class C ...`: the add-member
// dialogs on the command line. The options are the dialogs' controls; the checks run with
// the dialogs' messages (exit 1, nothing written), then the code is generated into the
// files in memory and saved, each file in its own line-end style and atomically, or with
// --dry-run shown as a unified diff. Any failing step leaves every file as it was.
#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <sstream>

#include "browse_common.h"
#include "codegen/add_member_requests.h"
#include "codegen/code_text_buffers.h"
#include "command_line.h"
#include "commands.h"
#include "member_lookup.h"
#include "model/class_list.h"
#include "settings/registry_ini_store.h"
#include "settings/vl_settings.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::app {

namespace {

struct TCommonOptions {
  std::vector<std::string> Project;  // zero or one
  std::string Class;
  std::string Visibility = "public";
  bool CheckSyntax = false;
  bool DryRun = false;
};

TVisibility ParseVisibility(const std::string& word) {
  if (word == "public") return TVisibility::Public;
  if (word == "private") return TVisibility::Private;
  if (word == "protected") return TVisibility::Protected;
  if (word == "published") return TVisibility::Published;
  throw TCommandError("--visibility takes public, private, protected or published", kExitUsage);
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A unified diff of a change that only inserts lines: the old lines are matched in order
// against the new ones, and every new line that does not match is an insertion.
std::string UnifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after) {
  const std::vector<std::string> a = Lines(before), b = Lines(after);
  struct TLine {
    char Op;  // ' ', '+' or '-'
    size_t OldLine, NewLine;
  };
  std::vector<TLine> script;
  size_t i = 0, j = 0;
  while (i < a.size() || j < b.size()) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      script.push_back({' ', i++, j++});
    } else if (j < b.size() && (b.size() - j) > (a.size() - i)) {
      script.push_back({'+', i, j++});
    } else {
      script.push_back({'-', i++, j});
    }
  }
  std::ostringstream out;
  out << "--- " << name << "\n+++ " << name << "\n";
  constexpr size_t kContext = 3;
  for (size_t k = 0; k < script.size();) {
    if (script[k].Op == ' ') {
      ++k;
      continue;
    }
    // A hunk from kContext lines before this change to kContext after the last change
    // that is no further than 2 * kContext unchanged lines from the one before.
    size_t first = k >= kContext ? k - kContext : 0;
    size_t last = k;
    for (size_t m = k; m < script.size(); ++m) {
      if (script[m].Op != ' ')
        last = m;
      else if (m - last > 2 * kContext)
        break;
    }
    const size_t end = std::min(script.size(), last + kContext + 1);
    size_t oldCount = 0, newCount = 0;
    for (size_t m = first; m < end; ++m) {
      if (script[m].Op != '+') ++oldCount;
      if (script[m].Op != '-') ++newCount;
    }
    out << "@@ -" << script[first].OldLine + (oldCount ? 1 : 0) << ',' << oldCount << " +"
        << script[first].NewLine + (newCount ? 1 : 0) << ',' << newCount << " @@\n";
    for (size_t m = first; m < end; ++m) {
      const TLine& l = script[m];
      out << l.Op << (l.Op == '-' ? a[l.OldLine] : b[l.NewLine]) << '\n';
    }
    k = end;
  }
  return out.str();
}

std::string ReadRaw(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string WithNewlines(std::string text) {
  for (char& c : text)
    if (c == '\r') c = '\n';
  return text;
}

// Opens the project, applies the request through `apply`, and saves or shows the result.
void RunAdd(const TCommonOptions& o,
            const std::function<TAddMemberOutcome(const TAddMemberTarget&)>& apply) {
  if (o.Project.size() > 1) throw TCommandError("only one PROJECT may be named", kExitUsage);
  if (o.Class.empty()) throw TCommandError("--class is required", kExitUsage);
  auto session = OpenBrowseSession(o.Project.empty() ? "" : o.Project[0]);
  TClassDescription* cls = FindClassByName(session->Classes(), o.Class);
  if (!cls) throw TCommandError("no class '" + o.Class + "' in the project");

  // The user's templates and code generation options; a store that cannot be read leaves
  // the defaults.
  TVLSettings settings;
  TRegistryIniStore store(TRegistryIniStore::DefaultFileName());
  if (store.Load()) settings.Load(store);
  TMemoryCodeBuffers buffers;
  const std::string module = ResolveUnitFile(cls->UnitName, session->WatchedFiles());
  const TAddMemberOutcome outcome = apply({cls, &settings, &buffers, module});
  if (!outcome.Ok)
    throw TCommandError(outcome.Message ? WithNewlines(outcome.Message->Text) : "failed");

  const std::vector<std::string> changed = buffers.ChangedFiles();
  if (o.DryRun) {
    for (const std::string& file : changed)
      std::cout << UnifiedDiff(RelativeToCurrent(file),
                               FromBufferForm(*buffers.Original(file), TLineEndStyle::Lf),
                               FromBufferForm(*buffers.Text(file), TLineEndStyle::Lf));
    return;
  }
  // Every file is written whole to a temporary file and renamed over the old one; when a
  // later file fails, those written already get their old text back.
  std::vector<std::pair<std::string, std::string>> written;  // file, its old bytes
  for (const std::string& file : changed) {
    const std::string raw = ReadRaw(file);
    try {
      WriteFileAtomically(file, FromBufferForm(*buffers.Text(file), DetectLineEndStyle(raw)));
      written.emplace_back(file, raw);
    } catch (const std::exception& e) {
      for (const auto& [done, old] : written) {
        try {
          WriteFileAtomically(done, old);
        } catch (const std::exception&) {
          PrintMessage("could not restore " + done);
        }
      }
      throw TCommandError("cannot save " + file + "; nothing was changed");
    }
    session->Reparse(file);
  }
  SaveWhenChanged(*session);
  for (const std::string& file : changed) PrintMessage("changed " + RelativeToCurrent(file));
  if (outcome.FocusLine > 0)
    std::cout << RelativeToCurrent(outcome.FocusFile) << ':' << outcome.FocusLine << '\n';
}

void AddCommon(CLI::App* cmd, TCommonOptions& o) {
  cmd->add_option("project", o.Project, "the project (the bundled example when none)");
  cmd->add_option("--class", o.Class, "the class to add to (Outer::Inner for a nested one)")
      ->required();
  cmd->add_option("--visibility", o.Visibility, "public, private, protected or published");
  cmd->add_flag("--check-syntax", o.CheckSyntax, "names must be valid identifiers");
  cmd->add_flag("--dry-run", o.DryRun, "print a unified diff instead of saving");
}

}  // namespace

void AddMemberCommands(CLI::App& app) {
  {
    struct TFieldOptions : TCommonOptions {
      TAddFieldRequest Request;
    };
    auto o = std::make_shared<TFieldOptions>();
    CLI::App* cmd =
        app.add_subcommand("add-field", "Add a field to a class (the Add Field dialog)");
    AddCommon(cmd, *o);
    cmd->add_option("--name", o->Request.FieldName, "Field Name")->required();
    cmd->add_option("--type", o->Request.Type, "Type")->required();
    cmd->callback([o] {
      o->Request.Visibility = ParseVisibility(o->Visibility);
      o->Request.CheckSyntax = o->CheckSyntax;
      RunAdd(*o, [o](const TAddMemberTarget& t) { return o->Request.Apply(t); });
    });
  }
  {
    struct TMethodOptions : TCommonOptions {
      TAddMethodRequest Request;
      std::string Kind = "procedure";
      bool KindGiven = false;
    };
    auto o = std::make_shared<TMethodOptions>();
    CLI::App* cmd =
        app.add_subcommand("add-method", "Add a method to a class (the Add Method dialog)");
    AddCommon(cmd, *o);
    TAddMethodRequest& r = o->Request;
    cmd->add_option("--name", r.MethodName, "Method Name")->required();
    cmd->add_option("--args", r.Arguments, "Arguments, as source text");
    cmd->add_option("--kind", o->Kind, "procedure, function, constructor or destructor");
    cmd->add_option("--result", r.ResultType, "Function Result");
    cmd->add_option("--result-suffix", r.ResultSuffix, "\"\", \"*\" or \"&\" after the result");
    cmd->add_flag("--abstract", r.Abstract, "abstract (declaration only)");
    cmd->add_flag("--virtual", r.Virtual, "virtual");
    cmd->add_flag("--dynamic", r.Dynamic, "dynamic (Pascal)");
    cmd->add_flag("--override", r.Override, "override (Pascal)");
    cmd->add_flag("--class-method", r.ClassMethod, "class method (Pascal)");
    cmd->add_flag("--const", r.Const, "const (C++)");
    cmd->add_flag("--fastcall", r.FastCall, "__fastcall (C++)");
    cmd->add_option("--message", r.MessageId, "message handler for this message id");
    cmd->add_option("--file", r.ImplementationFile, "implementation file (C++)");
    cmd->add_flag("--inherited", r.CallInherited, "call inherited");
    cmd->add_flag("--inline", r.Inline, "inline");
    cmd->add_flag("--implicit-inline", r.ImplicitInline, "body in the class (C++)");
    cmd->add_option("--body", r.Body, "the body when the inherited call is not wanted");
    cmd->callback([o] {
      TAddMethodRequest& req = o->Request;
      req.Visibility = ParseVisibility(o->Visibility);
      req.CheckSyntax = o->CheckSyntax;
      req.MessageHandler = !req.MessageId.empty();
      if (o->Kind == "procedure")
        req.Kind = TMethodKind::Procedure;
      else if (o->Kind == "function")
        req.Kind = TMethodKind::Function;
      else if (o->Kind == "constructor")
        req.Kind = TMethodKind::Constructor;
      else if (o->Kind == "destructor")
        req.Kind = TMethodKind::Destructor;
      else
        throw TCommandError("--kind takes procedure, function, constructor or destructor",
                            kExitUsage);
      // A result type names a function unless the kind was said otherwise.
      if (!req.ResultType.empty() && o->Kind == "procedure" && !o->KindGiven)
        req.Kind = TMethodKind::Function;
      RunAdd(*o, [o](const TAddMemberTarget& t) { return o->Request.Apply(t); });
    });
    cmd->get_option("--kind")->each([o](const std::string&) { o->KindGiven = true; });
  }
  {
    struct TPropertyOptions : TCommonOptions {
      TAddPropertyRequest Request;
      std::string CreateField;
    };
    auto o = std::make_shared<TPropertyOptions>();
    CLI::App* cmd =
        app.add_subcommand("add-property", "Add a property to a class (the Add Property dialog)");
    AddCommon(cmd, *o);
    TAddPropertyRequest& r = o->Request;
    cmd->add_option("--name", r.Name, "Property Name")->required();
    cmd->add_option("--type", r.Type, "Type");
    cmd->add_option("--reads", r.Reads, "Reads");
    cmd->add_option("--writes", r.Writes, "Writes");
    cmd->add_flag("--create-get", r.CreateGet, "create Get method");
    cmd->add_flag("--create-set", r.CreateSet, "create Set method");
    cmd->add_option("--array", r.Array, "Array parameters");
    cmd->add_option("--index", r.Index, "Index");
    cmd->add_option("--stored", r.Stored, "Stored");
    cmd->add_option("--default", r.Default, "Default");
    cmd->add_option("--create-field", o->CreateField,
                    "create field (its name; F + name when empty)")
        ->expected(0, 1);
    cmd->add_flag("--field-for-get", r.UseFieldForGet, "use the field for the read side");
    cmd->add_flag("--field-for-set", r.UseFieldForSet, "use the field for the write side");
    cmd->add_option("--get-member", r.GetMember, "implement Get using this member");
    cmd->add_option("--set-member", r.SetMember, "implement Set using this member");
    cmd->add_option("--implement-in", r.ImplementIn, "file for the Get and Set methods (C++)");
    cmd->callback([o, cmd] {
      TAddPropertyRequest& req = o->Request;
      req.Visibility = ParseVisibility(o->Visibility);
      req.CheckSyntax = o->CheckSyntax;
      req.CreateField = cmd->count("--create-field") > 0;
      // The dialog's default names, then what was named explicitly.
      const std::string reads = req.Reads, writes = req.Writes;
      req.NameChanged();
      if (!reads.empty()) req.Reads = reads;
      if (!writes.empty()) req.Writes = writes;
      if (!o->CreateField.empty()) req.FieldName = o->CreateField;
      req.ImplementGetUsingMember = !req.GetMember.empty();
      req.ImplementSetUsingMember = !req.SetMember.empty();
      RunAdd(*o, [o](const TAddMemberTarget& t) { return o->Request.Apply(t); });
    });
  }
}

}  // namespace velmora::app
