#include "hosts/lsp/code_server.h"

#include <dirent.h>

#include <algorithm>
#include <filesystem>

#include "hosts/lsp/code_actions.h"
#include "hosts/lsp/code_requests.h"
#include "parsing/source_parser.h"
#include "projects/project.h"
#include "settings/registry_ini_store.h"
#include "settings/vl_settings.h"
#include "support/paths.h"

namespace velmora::lsp {
namespace {

constexpr const char* kProgressToken = "velmora/project";
// Long enough for a burst of keystrokes to end in one parse, short enough that the outline
// follows a pause in typing.
constexpr std::chrono::milliseconds kEditDelay(250);

bool IsProjectExtension(std::string_view ext) {
  const std::string e = FoldName(ext);
  return e == ".bpr" || e == ".bpk" || e == ".mak" || e == ".cbproj" || e == ".dpr" ||
         e == ".dproj" || e == ".lpi" || e == ".lpk";
}

bool IsSourceExtension(std::string_view ext) {
  const std::string e = FoldName(ext);
  return e == ".cpp" || e == ".cxx" || e == ".cc" || e == ".c" || e == ".h" || e == ".hpp" ||
         e == ".hxx" || e == ".pas" || e == ".pp" || e == ".dpr" || e == ".lpr" || e == ".inc";
}

std::string Absolute(const std::string& path, const std::string& base) {
  std::filesystem::path p(path);
  if (p.is_relative()) p = std::filesystem::path(base.empty() ? "." : base) / p;
  return std::filesystem::absolute(p).lexically_normal().string();
}

std::string PathOf(const json& params) {
  return PathFromUri(params.at("textDocument").at("uri").get<std::string>());
}

TLspPosition PositionOf(const json& params) {
  const json& p = params.at("position");
  return {p.at("line").get<int>(), p.at("character").get<int>()};
}

}  // namespace

std::string ChooseProject(const std::string& root, const std::string& option) {
  if (!option.empty()) return Absolute(option, root);
  std::vector<std::string> found;
  if (DIR* dir = ::opendir(root.c_str())) {
    while (const dirent* entry = ::readdir(dir)) {
      const std::string name = entry->d_name;
      if (IsProjectExtension(ExtractFileExt(name))) found.push_back(name);
    }
    ::closedir(dir);
  }
  std::sort(found.begin(), found.end());
  // A Delphi project keeps its .dpr beside its .dproj: the two are one project.
  std::erase_if(found, [&](const std::string& name) {
    if (FoldName(ExtractFileExt(name)) != ".dpr") return false;
    const std::string stem = name.substr(0, name.size() - 4);
    return std::any_of(found.begin(), found.end(), [&](const std::string& other) {
      return FoldName(other) == FoldName(stem + ".dproj");
    });
  });
  if (found.size() == 1) return JoinPath(root, found.front());
  return root;
}

TCodeServer::TCodeServer(TLspServer& server, TServerOptions options, TCodeServerOptions codeOptions)
    : server_(server),
      options_(std::move(options)),
      inline_(codeOptions.Inline),
      settings_(codeOptions.Settings) {
  if (!settings_) {
    // A store that cannot be read leaves the defaults, as on the command line.
    ownSettings_ = std::make_unique<TVLSettings>();
    TRegistryIniStore store(TRegistryIniStore::DefaultFileName());
    if (store.Load()) ownSettings_->Load(store);
    settings_ = ownSettings_.get();
  }
  TParseDriver::TDeliver deliver = [this](TParsedFile parsed) { Deliver(std::move(parsed)); };
  if (inline_)
    driver_ = std::make_unique<TInlineParseDriver>(
        [this](TParsedFile parsed) { Merged(std::move(parsed)); });
  else if (codeOptions.Driver)
    driver_ = codeOptions.Driver(std::move(deliver));
  else
    driver_ = std::make_unique<TThreadParseDriver>(std::move(deliver));
  server_.OnInitialized = [this] { OpenProject(); };
  server_.OnDocumentChanged = [this](const std::string& path) { DocumentChanged(path); };
  server_.AddCapabilities = [](json& capabilities) {
    capabilities["documentSymbolProvider"] = true;
    capabilities["workspaceSymbolProvider"] = true;
    capabilities["definitionProvider"] = true;
    capabilities["declarationProvider"] = true;
    capabilities["implementationProvider"] = true;
    capabilities["hoverProvider"] = true;
    capabilities["typeHierarchyProvider"] = true;
    capabilities["codeActionProvider"] = {{"codeActionKinds", {"refactor"}},
                                          {"resolveProvider", true}};
    capabilities["executeCommandProvider"] = {
        {"commands",
         {kAddFieldCommand, kAddMethodCommand, kAddPropertyCommand, kInsertMarkerCommand}}};
  };
  BindRequests();
}

TCodeServer::~TCodeServer() {
  // The worker first: what it delivers after this point goes to a loop that has ended.
  driver_.reset();
  if (projectReader_.valid()) projectReader_.wait();
}

void TCodeServer::WaitProjectRead() {
  if (projectReader_.valid()) projectReader_.wait();
}

void TCodeServer::BindRequests() {
  TDispatcher& d = server_.Dispatcher();
  // Each request reads the texts it needs once, through a reader made for it.
  const auto withView = [this](const std::function<json(TModelView)>& f) {
    TSourceTexts texts(server_.Documents(), server_.Client().Encoding);
    return f(TModelView{model_, texts, sourceFiles_});
  };
  d.OnRequest("textDocument/documentSymbol", [this, withView](const json& params) {
    const std::string path = PathOf(params);
    if (path.empty()) return json::array();
    EnsureParsed(path);
    return withView([&](TModelView view) {
      return TDispatcher::RawResult(
          DocumentSymbols(view, path, server_.Client().HierarchicalSymbols));
    });
  });
  d.OnRequest("workspace/symbol", [withView](const json& params) {
    const std::string query = params.value("query", "");
    return withView([&](TModelView view) { return WorkspaceSymbols(view, query, 256); });
  });
  using TAt = json (*)(TModelView, const std::string&, int64_t);
  const auto atPosition = [this, withView](TAt answer, json empty) {
    return [this, withView, answer, empty](const json& params) {
      const std::string path = PathOf(params);
      const TLspPosition position = PositionOf(params);
      if (path.empty()) return empty;
      EnsureParsed(path);
      return withView([&](TModelView view) {
        const int64_t offset = view.Texts.Offset(path, position);
        return offset < 0 ? empty : answer(view, path, offset);
      });
    };
  };
  d.OnRequest("textDocument/definition", atPosition(&Definition, json::array()));
  d.OnRequest("textDocument/declaration", atPosition(&Declaration, json::array()));
  d.OnRequest("textDocument/implementation", atPosition(&Implementation, json::array()));
  d.OnRequest("textDocument/hover", atPosition(&Hover, nullptr));
  d.OnRequest("textDocument/prepareTypeHierarchy", atPosition(&PrepareTypeHierarchy, nullptr));
  d.OnRequest("typeHierarchy/supertypes", [withView](const json& params) {
    return withView([&](TModelView view) { return Supertypes(view, params.at("item")); });
  });
  d.OnRequest("typeHierarchy/subtypes", [withView](const json& params) {
    return withView([&](TModelView view) { return Subtypes(view, params.at("item")); });
  });
  d.OnRequest("textDocument/codeAction", [this, withView](const json& params) {
    const std::string path = PathOf(params);
    if (path.empty()) return json::array();
    EnsureParsed(path);
    const json& start = params.at("range").at("start");
    const TLspPosition position{start.at("line").get<int>(), start.at("character").get<int>()};
    return withView([&](TModelView view) {
      const int64_t offset = view.Texts.Offset(path, position);
      return offset < 0 ? json::array() : CodeActions(view, path, offset);
    });
  });
  // The edit is computed only when the client asks for it: a menu of actions is shown on
  // every cursor move, the edit of one only when it is chosen.
  d.OnRequest("codeAction/resolve", [this](const json& action) {
    json resolved = action;
    const json& data = action.at("data");
    resolved["edit"] =
        Edit(data.at("command").get<std::string>(), data.value("arguments", json::object()));
    return resolved;
  });
  d.OnRequest("workspace/executeCommand", [this](const json& params) {
    const std::string command = params.at("command").get<std::string>();
    const json arguments = params.value("arguments", json::array());
    json edit =
        Edit(command, arguments.is_array() && !arguments.empty() ? arguments[0] : arguments);
    server_.Request("workspace/applyEdit", {{"label", command}, {"edit", std::move(edit)}});
    return json(nullptr);
  });
  d.OnNotification("workspace/didChangeWatchedFiles",
                   [this](const json& params) { FilesChanged(params); });
  d.OnNotification("textDocument/didSave", [](const json&) {
    // The open document already is what was saved; the watcher reports the file itself.
  });
}

void TCodeServer::OpenProject() {
  const TClientInfo& client = server_.Client();
  std::string root = client.RootFolders.empty() ? std::string() : client.RootFolders.front();
  std::string chosen;
  if (!options_.Project.empty())
    chosen = Absolute(options_.Project, "");
  else if (!root.empty())
    chosen = ChooseProject(root, client.ProjectOption);
  if (chosen.empty()) return;  // no workspace: the open documents are all there is
  progressWanted_ = client.WorkDoneProgress;
  if (progressWanted_)
    server_.Request("window/workDoneProgress/create", {{"token", kProgressToken}},
                    [this](const json* result) {
                      if (!result || !progressWanted_) return;
                      progressOpen_ = true;
                      Progress("begin");
                      if (projectRead_ && awaiting_.empty()) Progress("end");
                    });
  // Reading a project file is quick, but a folder project walks the whole tree.
  const auto read = [this, chosen](bool here) {
    std::vector<std::string> parse, sources, warnings;
    std::string file = chosen;
    try {
      const TProject project = velmora::OpenProject(chosen);
      file = project.FileName;
      for (const TProjectUnit& unit : project.Units) {
        parse.push_back(unit.FileName);
        if (!unit.Header.empty()) parse.push_back(unit.Header);
        if (LanguageOfFile(unit.FileName) == TLanguage::Cpp && !IsHeaderFile(unit.FileName))
          sources.push_back(unit.FileName);
      }
      warnings = project.Warnings;
    } catch (const std::exception& e) {
      // The message names the file; the server goes on with the open documents alone.
      warnings.push_back(std::string("error: ") + e.what());
    }
    if (here)
      ProjectRead(std::move(file), std::move(parse), std::move(sources), std::move(warnings));
    else
      server_.Post([this, file, parse, sources, warnings]() mutable {
        ProjectRead(std::move(file), std::move(parse), std::move(sources), std::move(warnings));
      });
  };
  if (inline_)
    read(true);
  else
    projectReader_ = std::async(std::launch::async, read, false);
}

void TCodeServer::ProjectRead(std::string file, std::vector<std::string> parse,
                              std::vector<std::string> sources, std::vector<std::string> warnings) {
  projectFile_ = std::move(file);
  projectRead_ = true;
  sourceFiles_ = std::move(sources);
  for (const std::string& warning : warnings)
    server_.Log(warning.starts_with("error: ") ? 1 : 2, warning);
  server_.Log(3, "project " + projectFile_ + ": " + std::to_string(parse.size()) + " files");
  total_ = static_cast<int>(parse.size());
  for (const std::string& path : parse) {
    projectFiles_.insert(path);
    awaiting_.insert(path);
  }
  if (progressOpen_) Progress("report");
  if (awaiting_.empty()) Progress("end");
  for (const std::string& path : parse) {
    // An open document is parsed from the client's text, and already was when it opened.
    if (const TDocument* doc = server_.Documents().FindByPath(path))
      driver_->Parse(path, doc->Text, ++generation_, std::chrono::milliseconds(0));
    else
      driver_->Parse(path, std::nullopt, ++generation_, std::chrono::milliseconds(0));
  }
}

void TCodeServer::Deliver(TParsedFile parsed) {
  auto shared = std::make_shared<TParsedFile>(std::move(parsed));
  server_.Post([this, shared] { Merged(std::move(*shared)); });
}

void TCodeServer::Merged(TParsedFile parsed) {
  const std::string path = parsed.Path;
  if (!parsed.Ok) server_.Log(1, "cannot read " + path + ": " + parsed.Error);
  model_.Merge(std::move(parsed));
  if (awaiting_.erase(path) == 0) return;
  if (awaiting_.empty())
    Progress("end");
  else
    Progress("report");
}

void TCodeServer::Progress(const char* kind) {
  if (!progressOpen_) return;
  const int done = total_ - static_cast<int>(awaiting_.size());
  const int percent = total_ == 0 ? 100 : done * 100 / total_;
  json value = {{"kind", kind}};
  const std::string message = std::to_string(done) + "/" + std::to_string(total_) + " files";
  if (std::string_view(kind) == "begin") {
    value["title"] = "Parsing project";
    value["cancellable"] = false;
    value["message"] = message;
    value["percentage"] = percent;
    lastPercent_ = percent;
  } else if (std::string_view(kind) == "report") {
    // One report per percent: a tree of thousands of files would flood the client.
    if (percent == lastPercent_) return;
    lastPercent_ = percent;
    value["message"] = message;
    value["percentage"] = percent;
  } else {
    value["message"] = message;
    progressOpen_ = false;
    progressWanted_ = false;
  }
  server_.Notify("$/progress", {{"token", kProgressToken}, {"value", std::move(value)}});
}

void TCodeServer::EnsureParsed(const std::string& path) {
  if (model_.File(path)) return;
  const TDocument* doc = server_.Documents().FindByPath(path);
  if (!doc) return;  // a file never opened and not parsed: the answer is empty
  TParsedFile parsed = ParseFileForModel(path, doc->Text, ++generation_);
  model_.Merge(std::move(parsed));
}

json TCodeServer::Edit(std::string_view command, const json& arguments) {
  return CommandEdit({server_.Documents(), *settings_, server_.Client().Encoding}, command,
                     arguments);
}

void TCodeServer::DocumentChanged(const std::string& path) {
  if (const TDocument* doc = server_.Documents().FindByPath(path))
    driver_->Parse(path, doc->Text, ++generation_, kEditDelay);
  else if (model_.File(path) || projectFiles_.count(path))
    driver_->Parse(path, std::nullopt, ++generation_, std::chrono::milliseconds(0));
}

void TCodeServer::FilesChanged(const json& params) {
  for (const json& change : params.at("changes")) {
    const std::string path = PathFromUri(change.at("uri").get<std::string>());
    if (path.empty() || !IsSourceExtension(ExtractFileExt(path))) continue;
    if (server_.Documents().FindByPath(path)) continue;  // the client's text wins
    if (change.value("type", 2) == 3)
      model_.Remove(path);
    else
      driver_->Parse(path, std::nullopt, ++generation_, std::chrono::milliseconds(0));
  }
}

}  // namespace velmora::lsp
