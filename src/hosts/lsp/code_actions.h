// The add-member code actions: "Add field…", "Add method…", "Add property…" for the class
// at the cursor and "Insert code marker", and the commands behind them
// (velmora.addField, velmora.addMethod, velmora.addProperty, velmora.insertMarker). A
// command's arguments are one JSON object whose keys are the fields of the add-member
// request ("FieldName", "Type", "Visibility", ...) plus "uri" and "Class", the class to add
// to; the code actions carry such an object as their data and are given their edit only
// when the client resolves them.
//
// An edit is computed on copies: the class is parsed afresh from the text the client holds
// (or the file on disk), the generator writes into buffers in memory, and what it inserted
// becomes one TextEdit per insertion. The model and the files stay as they are until the
// client applies the edit (and the documents' changes re-parse them).
//
// Threads: main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/lsp/code_requests.h"
#include "hosts/lsp/documents.h"

namespace velmora {
class TVLSettings;
}

namespace velmora::lsp {

/// The commands the server executes.
inline constexpr std::string_view kAddFieldCommand = "velmora.addField";
inline constexpr std::string_view kAddMethodCommand = "velmora.addMethod";
inline constexpr std::string_view kAddPropertyCommand = "velmora.addProperty";
inline constexpr std::string_view kInsertMarkerCommand = "velmora.insertMarker";

/// CodeAction[] for `offset` in `path`: the three add-member actions when the offset lies
/// in a class's declaration, and "Insert code marker" everywhere in a readable file. Each
/// has `data` {"command", "arguments"} and no edit yet.
json CodeActions(TModelView view, const std::string& path, int64_t offset);

/// What an edit is computed from besides the model.
struct TEditContext {
  const TDocumentStore& Documents;
  const TVLSettings& Settings;
  TPositionEncoding Encoding = TPositionEncoding::Utf16;
};

/// The WorkspaceEdit that `command` with `arguments` makes. Throws TLspError -32602 for
/// arguments that do not name a command, a file or a class, and for a request refused by
/// its check or its generation (with the dialog's message, word for word).
json CommandEdit(const TEditContext& context, std::string_view command, const json& arguments);

/// The marker line(s) `kind` (1 global insert end, 2 class implementation end, 3 method
/// implementation begin, 4 help description begin and end) writes for `argument` in
/// `path`'s language with the settings' comment style, in buffer form; empty for another
/// kind.
std::string MarkerLines(const TVLSettings& settings, const std::string& path, int kind,
                        std::string_view argument);

}  // namespace velmora::lsp
