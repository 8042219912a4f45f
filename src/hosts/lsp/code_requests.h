// The requests that read the code model: the outline of a document, the workspace symbol
// search, the jumps (definition, declaration, implementation), hover and the type
// hierarchy. Each answers from the model as it stands: a file not parsed yet is simply
// not there.
//
// Threads: main thread only (the model and the documents are the main thread's).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/lsp/code_model.h"
#include "hosts/lsp/source_texts.h"

namespace velmora::lsp {

/// What a request reads: the model, the texts, and the files where implementations are
/// looked for after a class's own.
struct TModelView {
  const TCodeModel& Model;
  TSourceTexts& Texts;
  /// The project's source files (not headers), in project order.
  const std::vector<std::string>& SourceFiles;
};

/// DocumentSymbol[] when `hierarchical`, else SymbolInformation[], as JSON text; [] for a
/// file that cannot be read.
std::string DocumentSymbols(TModelView view, const std::string& path, bool hierarchical);
/// SymbolInformation[]: classes and members whose name holds the query's letters in order
/// (case-insensitive), best matches first, at most `limit`.
json WorkspaceSymbols(TModelView view, std::string_view query, std::size_t limit);

/// The declaration under a position, and whether the position was on that declaration or
/// on an implementation of it.
struct TResolved {
  TClassDescription* Class = nullptr;    ///< the class named, or the member's class
  TMethodDescription* Method = nullptr;  ///< a method or routine
  TFieldDescription* Field = nullptr;    ///< a field or property
  const TFileModel* File = nullptr;      ///< the file declaring it
  bool OnDeclaration = false;
  bool OnImplementation = false;
  bool Found() const { return Class || Method || Field; }
};
TResolved ResolveAt(TModelView view, const std::string& path, int64_t offset);

/// Location[] (empty when nothing is found).
json Definition(TModelView view, const std::string& path, int64_t offset);
json Declaration(TModelView view, const std::string& path, int64_t offset);
json Implementation(TModelView view, const std::string& path, int64_t offset);
/// Hover or null.
json Hover(TModelView view, const std::string& path, int64_t offset);

/// TypeHierarchyItem[] or null.
json PrepareTypeHierarchy(TModelView view, const std::string& path, int64_t offset);
json Supertypes(TModelView view, const json& item);
json Subtypes(TModelView view, const json& item);

}  // namespace velmora::lsp

namespace velmora::lsp {

/// Where the name of `object` stands in `text` (its first whole-word occurrence from the
/// declaration's start), or the declaration's start when not found.
int64_t NameOffsetOf(const std::string& text, const TCodeObject& object);
/// The end of a declaration: its recorded end, but never before its name's end.
int64_t DeclarationEnd(const TCodeObject& object, int64_t nameOffset);

}  // namespace velmora::lsp
