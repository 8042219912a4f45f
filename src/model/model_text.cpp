#include "model/model_text.h"

#include <cstdio>

#include "model/class_list.h"

namespace velmora {
namespace {

void Indent(std::string& out, int depth) {
  out.append(static_cast<size_t>(depth) * 2, ' ');
}

// Values are quoted with the control characters and the quote escaped, so that every
// record stays on one line whatever a damaged source put into a name.
void AppendQuoted(std::string& out, std::string_view s) {
  out += '"';
  for (unsigned char c : s) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 32 || c == 127) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\x%02x", c);
      out += buf;
    } else {
      out += static_cast<char>(c);
    }
  }
  out += '"';
}

void AppendField(std::string& out, std::string_view key, std::string_view value) {
  out += ' ';
  out += key;
  out += '=';
  AppendQuoted(out, value);
}

void AppendPositions(std::string& out, const TCodeObject& o) {
  out += " at " + std::to_string(o.StartLine) + ':' + std::to_string(o.StartOffset) + '-' +
         std::to_string(o.EndLine) + ':' + std::to_string(o.EndOffset);
}

std::string_view NeutralVisibility(TVisibility v) {
  // The Pascal words are the language-neutral ones ("published", not "__published").
  const std::string_view text = VisibilityText(v, TLanguage::Pascal);
  return text.empty() ? std::string_view("?") : text;
}

void DescribeMethod(const TMethodDescription& m, int depth, std::string& out) {
  Indent(out, depth);
  out += "method ";
  out += NeutralVisibility(m.Visibility);
  out += ' ';
  out += MethodKindText(m.Kind);
  out += ' ';
  AppendQuoted(out, m.Name);
  AppendField(out, "result", m.ResultType);
  char buf[32];
  std::snprintf(buf, sizeof buf, " directives=0x%04x", m.Directives);
  out += buf;
  if (!m.MessageName.empty()) AppendField(out, "message", m.MessageName);
  AppendPositions(out, m);
  out += '\n';
  for (int i = 0; i < m.Parameters.Count(); ++i) {
    const TParameter& p = m.Parameters[i];
    Indent(out, depth + 1);
    out += "param";
    AppendField(out, "name", p.Name);
    AppendField(out, "modifier", p.Modifier);
    AppendField(out, "type", p.ParamType);
    AppendField(out, "default", p.DefaultValue);
    out += '\n';
  }
}

void DescribeField(const TFieldDescription& f, int depth, std::string& out) {
  Indent(out, depth);
  out += f.IsProperty ? "property " : "field ";
  out += NeutralVisibility(f.Visibility);
  out += ' ';
  AppendQuoted(out, f.Name);
  AppendField(out, "type", f.FieldType);
  AppendField(out, "modifier", f.Modifier);
  if (f.IsProperty && f.Property) {
    const TPropertyDescription& p = *f.Property;
    AppendField(out, "index_params", p.IndexParams);
    AppendField(out, "index", p.IndexSpec);
    AppendField(out, "read", p.ReadSpec);
    AppendField(out, "write", p.WriteSpec);
    AppendField(out, "stored", p.StoredSpec);
    AppendField(out, "default", p.DefaultSpec);
  }
  AppendPositions(out, f);
  out += '\n';
}

void DescribeClass(const TClassDescription& c, int depth, std::string& out) {
  Indent(out, depth);
  out += ClassKindText(c.ClassKind);
  out += ' ';
  AppendQuoted(out, c.Name);
  out += ' ';
  out += LanguageText(c.Language);
  AppendField(out, "unit", c.UnitName);
  if (!c.TemplateParams.empty()) AppendField(out, "template", c.TemplateParams);
  if (!c.Guid.empty()) AppendField(out, "guid", c.Guid);
  AppendPositions(out, c);
  out += '\n';
  for (const TClassAncestor& a : c.Ancestors.Items) {
    Indent(out, depth + 1);
    out += "ancestor ";
    out += NeutralVisibility(a.Access);
    out += ' ';
    AppendQuoted(out, a.AncestorName);
    out += '\n';
  }
  for (int i = 0; i < c.Fields.Count(); ++i) DescribeField(*c.Fields.Items(i), depth + 1, out);
  for (int i = 0; i < c.Methods.Count(); ++i) DescribeMethod(*c.Methods.Items(i), depth + 1, out);
  if (const TCommonClassList* nested = c.NestedClassesIfAny(); nested && nested->Count() > 0)
    DescribeClasses(*nested, depth + 1, out);
}

}  // namespace

void DescribeClasses(const TCommonClassList& list, int depth, std::string& out) {
  for (int i = 0; i < list.Count(); ++i) DescribeClass(*list.Items(i), depth, out);
}

std::string DescribeModel(const TClasslist& list) {
  std::string out;
  DescribeClasses(list, 0, out);
  for (int i = 0; i < list.Routines.Count(); ++i) {
    const TProcDescription& r = *list.Routines.Items(i);
    out += "routine";
    AppendField(out, "file", r.FileName);
    out += '\n';
    DescribeMethod(r, 1, out);
  }
  for (int i = 0; i < list.Includes.Count(); ++i) {
    const TIncludeUnit& u = *list.Includes.Items(i);
    out += "includes ";
    AppendQuoted(out, u.UnitName);
    out += ':';
    for (int j = 0; j < u.IncludedNames.Count(); ++j) {
      out += ' ';
      AppendQuoted(out, u.IncludedNames.Strings(j));
    }
    out += '\n';
  }
  return out;
}

}  // namespace velmora
