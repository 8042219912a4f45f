#include "addin/editor_file_info.h"

#include "addin/editor_streams.h"
#include "addin/tool_services.h"
#include "ide/module.h"
#include "ide/tool_services.h"

namespace velmora {
namespace {

bool IsIdentStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool IsIdentChar(char c) {
  return IsIdentStart(c) || (c >= '0' && c <= '9');
}

}  // namespace

bool TEditorFileInfo::Fill() {
  TIToolServices* ide = ToolServices;
  if (!ide) return false;
  const std::string current = ide->CurrentFile();
  TIRef<TIModule> module(ide->GetModule(current));
  if (!module) return false;
  TIRef<TIEditor> editor(EditorOfFile(*module, current));
  if (!editor || editor->ViewCount() < 1) return false;
  TIRef<TIEditView> view(editor->GetView(0));
  if (!view) return false;
  FileName = current;
  CursorPos = view->GetPos(0);
  CursorLine = CursorPos.Line;
  CursorCol = CursorPos.Col;
  const TEditPos top = view->GetPos(1);
  TopLine = top.Line;
  LeftCol = top.Col;
  TEditPos editPos = CursorPos;
  view->ConvertPos(true, editPos, CursorCharPos);
  Offset = view->CharPosToPos(CursorCharPos);
  return true;
}

bool CurrentEditorLineText(int32_t line, std::string& text) {
  text.clear();
  TIToolServices* ide = ToolServices;
  if (!ide || line < 1) return false;
  TEditorReadStream stream(ide->CurrentFile(), false);
  if (!stream.Valid()) return false;
  std::string block;
  int32_t current = 1;
  bool found = false;
  for (;;) {
    const int n = stream.Read(block, 16384);
    if (n <= 0) return found;
    for (int i = 0; i < n; ++i) {
      const char c = block[static_cast<size_t>(i)];
      if (c == '\r') {
        if (current == line) return true;
        ++current;
      } else if (current == line) {
        found = true;
        // The LF of the CR LF pair that ended the line before is not part of this one.
        if (c == '\n' && text.empty()) continue;
        text += c;
      } else if (current > line) {
        return true;
      }
    }
    if (current == line) found = true;
  }
}

std::string IdentifierAt(const std::string& line, int charIndex) {
  const size_t position = static_cast<size_t>(charIndex) + 1;  // 1-based
  std::string result;
  if (charIndex < 0 || line.size() < position - 1) return result;
  for (size_t i = 1; i <= line.size(); ++i) {
    const char c = line[i - 1];
    const bool stillValid = result.empty() ? IsIdentStart(c) : IsIdentChar(c);
    if (stillValid) {
      result += c;
    } else if (i >= position) {
      break;
    } else {
      result.clear();
    }
  }
  return result;
}

std::string WordAtCursor() {
  TEditorFileInfo info;
  if (!info.Fill()) return "";
  std::string line;
  if (!CurrentEditorLineText(info.CursorLine, line)) return "";
  return IdentifierAt(line, info.CursorCharPos.CharIndex);
}

}  // namespace velmora
