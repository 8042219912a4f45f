#include "model/model_json.h"

#include <nlohmann/json.hpp>

#include "model/class_list.h"

namespace velmora {
namespace {

using Json = nlohmann::ordered_json;

// Language-neutral visibility words: the Pascal ones ("published", not "__published").
std::string Visibility(TVisibility v) {
  return std::string(VisibilityText(v, TLanguage::Pascal));
}

void AddPositions(Json& j, const TCodeObject& o) {
  j["start_line"] = o.StartLine;
  j["end_line"] = o.EndLine;
  j["start_offset"] = o.StartOffset;
  j["end_offset"] = o.EndOffset;
}

// Names and types come from single-byte source text and JSON wants UTF-8: bytes above 127
// are read as Windows-1252, and the five bytes that code page leaves undefined become the
// control characters of the same number, so the dump never fails on a strange byte.
std::string Text(std::string_view s) {
  static const char16_t kHigh[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::string out;
  out.reserve(s.size());
  for (unsigned char c : s) {
    if (c < 0x80) {
      out += static_cast<char>(c);
      continue;
    }
    const unsigned cp = c < 0xA0 ? kHigh[c - 0x80] : c;
    if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

Json MethodJson(const TMethodDescription& m) {
  Json j;
  j["name"] = Text(m.Name);
  j["kind"] = std::string(MethodKindText(m.Kind));
  j["visibility"] = Visibility(m.Visibility);
  j["result"] = Text(m.ResultType);
  j["directives"] = m.Directives;
  j["message"] = Text(m.MessageName);
  Json params = Json::array();
  for (const TParameter& p : m.Parameters.Items)
    params.push_back({{"name", Text(p.Name)},
                      {"modifier", Text(p.Modifier)},
                      {"type", Text(p.ParamType)},
                      {"default", Text(p.DefaultValue)}});
  j["params"] = std::move(params);
  AddPositions(j, m);
  return j;
}

Json FieldJson(const TFieldDescription& f) {
  Json j;
  j["name"] = Text(f.Name);
  j["type"] = Text(f.FieldType);
  j["modifier"] = Text(f.Modifier);
  j["visibility"] = Visibility(f.Visibility);
  j["is_property"] = f.IsProperty;
  if (f.IsProperty && f.Property) {
    const TPropertyDescription& p = *f.Property;
    j["property"] = {{"index_params", Text(p.IndexParams)},
                     {"index", Text(p.IndexSpec)},
                     {"read", Text(p.ReadSpec)},
                     {"write", Text(p.WriteSpec)},
                     {"stored", Text(p.StoredSpec)},
                     {"default", Text(p.DefaultSpec)}};
  } else {
    j["property"] = nullptr;
  }
  AddPositions(j, f);
  return j;
}

Json ClassesJson(const TCommonClassList& list);

Json ClassJson(const TClassDescription& c) {
  Json j;
  j["name"] = Text(c.Name);
  j["language"] = std::string(LanguageText(c.Language));
  j["kind"] = std::string(ClassKindText(c.ClassKind));
  j["unit"] = Text(c.UnitName);
  j["template_params"] = Text(c.TemplateParams);
  j["guid"] = Text(c.Guid);
  Json ancestors = Json::array();
  for (const TClassAncestor& a : c.Ancestors.Items)
    ancestors.push_back({{"name", Text(a.AncestorName)}, {"access", Visibility(a.Access)}});
  j["ancestors"] = std::move(ancestors);
  AddPositions(j, c);
  Json fields = Json::array();
  for (int i = 0; i < c.Fields.Count(); ++i) fields.push_back(FieldJson(*c.Fields.Items(i)));
  j["fields"] = std::move(fields);
  Json methods = Json::array();
  for (int i = 0; i < c.Methods.Count(); ++i) methods.push_back(MethodJson(*c.Methods.Items(i)));
  j["methods"] = std::move(methods);
  const TCommonClassList* nested = c.NestedClassesIfAny();
  j["nested"] = nested ? ClassesJson(*nested) : Json::array();
  return j;
}

Json ClassesJson(const TCommonClassList& list) {
  Json classes = Json::array();
  for (int i = 0; i < list.Count(); ++i) classes.push_back(ClassJson(*list.Items(i)));
  return classes;
}

}  // namespace

std::string ModelToJson(const TClasslist& list) {
  Json root;
  root["classes"] = ClassesJson(list);
  Json routines = Json::array();
  for (int i = 0; i < list.Routines.Count(); ++i) {
    const TProcDescription& r = *list.Routines.Items(i);
    Json j = MethodJson(r);
    j["file"] = Text(r.FileName);
    routines.push_back(std::move(j));
  }
  root["routines"] = std::move(routines);
  Json includes = Json::array();
  for (int i = 0; i < list.Includes.Count(); ++i) {
    const TIncludeUnit& u = *list.Includes.Items(i);
    Json names = Json::array();
    for (int k = 0; k < u.IncludedNames.Count(); ++k)
      names.push_back(Text(u.IncludedNames.Strings(k)));
    includes.push_back({{"unit", Text(u.UnitName)}, {"names", std::move(names)}});
  }
  root["includes"] = std::move(includes);
  return root.dump(2) + "\n";
}

}  // namespace velmora
