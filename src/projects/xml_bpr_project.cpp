// C++Builder projects of versions 5 and 6: the same macros as the make-file, kept as
// `<MACROS><NAME value="..."/>` and `<OPTIONS>`, the source files in `<FILELIST>`, and the
// IDE's ini block as the text of `<IDEOPTIONS>`.
#include "projects/bcb_options.h"
#include "projects/xml_document.h"
#include "support/ansi.h"

namespace velmora::projects {

namespace {

// The files the compilers of the IDE build, as FILELIST names them.
bool IsCompiledContainer(std::string_view id) {
  return SameText(id, "CCompiler") || SameText(id, "PascalCompiler");
}

}  // namespace

TProject ReadXmlBprProject(const std::string& path) {
  pugi::xml_document document;
  LoadXmlProject(path, "PROJECT", document);
  const pugi::xml_node root = document.document_element();
  TProjectBuilder builder(path, TProjectKind::XmlBpr);

  const pugi::xml_node sections[] = {ChildNoCase(root, "MACROS"), ChildNoCase(root, "OPTIONS")};
  const TBcbMacroValue macro = [&](std::string_view name) -> std::optional<std::string> {
    for (pugi::xml_node section : sections)
      if (const pugi::xml_node m = ChildNoCase(section, name)) return AttributeNoCase(m, "value");
    return std::nullopt;
  };
  const TMacroLookup expand = [&](std::string_view name) -> std::optional<std::string> {
    if (auto env = EnvironmentMacro(name)) return env;
    return macro(name);
  };
  const TIniText ide(ChildNoCase(root, "IDEOPTIONS").child_value());

  // FILELIST names the sources themselves, where OBJFILES leaves them to be guessed from
  // the object files; a project saved without it still has OBJFILES.
  bool listed = false;
  for (pugi::xml_node file : ChildNoCase(root, "FILELIST").children()) {
    if (!SameText(file.name(), "FILE")) continue;
    const std::string fileName = AttributeNoCase(file, "FILENAME");
    if (!IsCompiledContainer(AttributeNoCase(file, "CONTAINERID")) && !IsCppSourceName(fileName) &&
        !IsPascalSourceName(fileName))
      continue;
    listed = true;
    builder.AddUnit(fileName, expand);
  }
  if (listed) {
    // Units are taken from the list; the rest of the options as both forms share them.
    const TBcbMacroValue withoutObjects = [&](std::string_view name) {
      return SameText(name, "OBJFILES") ? std::nullopt : macro(name);
    };
    ReadBcbOptions(builder, withoutObjects, expand, ide);
  } else {
    ReadBcbOptions(builder, macro, expand, ide);
  }
  return builder.Finish();
}

}  // namespace velmora::projects
