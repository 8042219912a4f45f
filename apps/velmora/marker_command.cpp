// `velmora marker insert KIND FILE:LINE [ARG]`: the "Insert Code Marker" menu on the
// command line. The marker goes on a line of its own before LINE, in the comment style the
// settings choose for the file's language; "help" writes the begin and end pair. The file
// keeps its line ends and is replaced atomically.
#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <sstream>

#include "browse_common.h"
#include "codegen/code_markers.h"
#include "command_line.h"
#include "commands.h"
#include "parsing/source_parser.h"
#include "settings/registry_ini_store.h"
#include "settings/vl_settings.h"
#include "support/stream.h"
#include "support/text_buffer.h"

namespace velmora::app {

namespace {

struct TMarkerOptions {
  std::string Action;
  std::string Kind;
  std::string Where;
  std::string Argument;
  bool DryRun = false;
};

// The kinds by the words the command takes; "help" stands for the begin and end pair.
int KindOf(const std::string& word) {
  if (word == "insert-end") return mkInsertEnd;
  if (word == "class-end") return mkClassMethod;
  if (word == "method-begin") return mkMethodMarker;
  if (word == "help") return mkDescBegin;
  if (word == "include") return mkDescInclude;
  throw TCommandError("KIND is one of insert-end, class-end, method-begin, help, include",
                      kExitUsage);
}

void RunMarker(const TMarkerOptions& o) {
  if (o.Action != "insert") throw TCommandError("marker knows only 'insert'", kExitUsage);
  const int kind = KindOf(o.Kind);
  const size_t colon = o.Where.rfind(':');
  if (colon == std::string::npos) throw TCommandError("the place is FILE:LINE", kExitUsage);
  const std::string file = o.Where.substr(0, colon);
  int line = 0;
  try {
    line = std::stoi(o.Where.substr(colon + 1));
  } catch (const std::exception&) {
    throw TCommandError("the place is FILE:LINE", kExitUsage);
  }
  if (MarkerHasArgument(kind) && o.Argument.empty())
    throw TCommandError("this marker needs an ARG (a class, Class.Method or a symbol)", kExitUsage);

  std::ifstream in(file, std::ios::binary);
  if (!in) throw TCommandError("cannot read " + file);
  std::ostringstream raw;
  raw << in.rdbuf();
  const std::string text = ToBufferForm(raw.str());

  TVLSettings settings;
  TRegistryIniStore store(TRegistryIniStore::DefaultFileName());
  if (store.Load()) settings.Load(store);
  const TLanguage language = LanguageOfFile(file);
  const int style =
      MarkerStyleForSetting(language, IsCpp(language) ? settings.CPPCodeGenMarkerCommentType
                                                      : settings.PascalMarkerCommentType);
  std::string lines = MarkerText(kind, style, o.Argument) + "\r\n";
  if (kind == mkDescBegin) lines += MarkerText(mkDescEnd, style) + "\r\n";

  // The start of LINE; past the last line, the end (after a line break of its own).
  size_t at = 0;
  int current = 1;
  while (current < line && at < text.size()) {
    const size_t lf = text.find('\n', at);
    if (lf == std::string::npos) {
      at = text.size();
      break;
    }
    at = lf + 1;
    ++current;
  }
  if (current < line && !text.empty() && text.back() != '\n') lines.insert(0, "\r\n");
  std::string changed = text;
  changed.insert(at, lines);

  if (o.DryRun) {
    std::cout << FromBufferForm(lines, TLineEndStyle::Lf);
    return;
  }
  try {
    WriteFileAtomically(file, FromBufferForm(changed, DetectLineEndStyle(raw.str())));
  } catch (const std::exception& e) {
    throw TCommandError(std::string("cannot save ") + file + ": " + e.what());
  }
  PrintMessage("changed " + RelativeToCurrent(file));
}

}  // namespace

void AddMarkerCommand(CLI::App& app) {
  auto o = std::make_shared<TMarkerOptions>();
  CLI::App* cmd = app.add_subcommand(
      "marker", "Insert a code marker (insert-end, class-end, method-begin, help, include)");
  cmd->add_option("action", o->Action, "insert")->required();
  cmd->add_option("kind", o->Kind, "insert-end, class-end, method-begin, help or include")
      ->required();
  cmd->add_option("place", o->Where, "FILE:LINE, the line the marker goes before")->required();
  cmd->add_option("arg", o->Argument, "the class, Class.Method or symbol the marker names");
  cmd->add_flag("--dry-run", o->DryRun, "print the marker lines instead of saving");
  cmd->callback([o] { RunMarker(*o); });
}

}  // namespace velmora::app
