#include "settings/code_templates.h"

namespace velmora {
namespace {

// One built-in template as written here; the records are made from these once.
struct TTemplateSource {
  const char* Title;
  const char* Description;
  // Unused slots stay null; the used ones are the leading ones.
  const char* Params[kTemplateParamSlots];
  const char* Examples[kTemplateParamSlots];
  const char* Text;
};

// The texts are kept exactly as users have always seen them, spelling included: a
// changed default would look to them like a template they had edited themselves.
const TTemplateSource kPascalSources[kPascalTemplateCount] = {
    {.Title = "Visibility Specifier",
     .Description = "Template used to build a visibility specifier.",
     .Params = {"VISIBILITYSPECIFIER"},
     .Examples = {"public"},
     .Text = "      %VISIBILITYSPECIFIER%"},
    {.Title = "Method parameter",
     .Description = "Template used to build a single parmeters in method parameter lists.",
     .Params = {"PARAMKIND", "NAME", "COLON", "TYPE", "INITIALIZER"},
     .Examples = {"var", "Params", ":", "TCreateParams", ""},
     .Text = "%PARAMKIND$ %NAME%%COLON% $TYPE% $INITIALIZER%"},
    {.Title = "Field Declaration",
     .Description = "Template used to build a field declaration.",
     .Params = {"NAME", "TYPE", "CLASSNAME"},
     .Examples = {"FInputString", "string", "TInputDialog"},
     .Text = "        %NAME%: %TYPE%;"},
    {.Title = "Property Declaration",
     .Description = "Template used to build a property declaration.",
     .Params = {"NAME", "BRACKETOPEN", "ARRAY", "BRACKETCLOSE", "COLON", "TYPE", "SPECIFIERS",
                "CLASSNAME"},
     .Examples = {"InputString", "", "", "", ":", "string", "read FInputString write FInputString",
                  "TInputDialog"},
     .Text =
         "        property %NAME%$BRACKETOPEN$%ARRAY%$BRACKETCLOSE$%COLON% $TYPE% $SPECIFIERS%;"},
    {.Title = "Procedure declaration",
     .Description = "Template used to build a declaration of a procedure.",
     .Params = {"METHODTYPE", "NAME", "PAROPEN", "PARAMS", "PARCLOSE", "DIRECTIVES", "CLASSNAME"},
     .Examples = {"procedure", "CreateParams", "(", "var Params: TCreateParams", ")", "override",
                  "TInputDialog"},
     .Text = "        %METHODTYPE% %NAME%$PAROPEN%%PARAMS%%PARCLOSE$; $DIRECTIVES%"},
    {.Title = "Function declaration",
     .Description = "Template used to build a declaration of a function.",
     .Params = {"METHODTYPE", "NAME", "PAROPEN", "PARAMS", "PARCLOSE", "RESULTTYPE", "DIRECTIVES",
                "CLASSNAME"},
     .Examples = {"function", "Execute", "(", "msg: string", ")", "string", "virtual",
                  "TInputDialog"},
     .Text = "        %METHODTYPE% %NAME%$PAROPEN%%PARAMS%%PARCLOSE$: %RESULTTYPE%; $DIRECTIVES%"},
    {.Title = "Procedure implementation",
     .Description = "Template used to build a implementation of a procedure.",
     .Params = {"METHODTYPE", "CLASSNAME", "NAME", "PAROPEN", "PARAMS", "PARCLOSE",
                "IMPLEMENTATION"},
     .Examples = {"procedure", "TInputDialog", "CreateParams", "(", "var Params: TCreateParams",
                  ")", "DoWhatIWant;"},
     .Text =
         "%METHODTYPE% "
         "%CLASSNAME%.%NAME%$PAROPEN%%PARAMS%%PARCLOSE$;\r\nbegin\r\n%IMPLEMENTATION%\r\nend;\r\n"},
    {.Title = "Function implementation",
     .Description = "Template used to build a implementation of a function.",
     .Params = {"METHODTYPE", "CLASSNAME", "NAME", "PAROPEN", "PARAMS", "PARCLOSE", "RESULTTYPE",
                "IMPLEMENTATION"},
     .Examples = {"function", "TInputDialog", "Execute", "(", "msg: string", ")", "string",
                  "result := '';"},
     .Text = "%METHODTYPE% %CLASSNAME%.%NAME%$PAROPEN%%PARAMS%%PARCLOSE$: "
             "%RESULTTYPE%;\r\nbegin\r\n%IMPLEMENTATION%\r\nend;\r\n"},
    {.Title = "Property Get code",
     .Description = "Template used to build the implementation of a property get method.",
     .Params = {"FIELDNAME"},
     .Examples = {"FInputString"},
     .Text = "    result := %FIELDNAME%;"},
    {.Title = "Property Set code",
     .Description = "Template used to build the implementation of a property set method.",
     .Params = {"FIELDNAME"},
     .Examples = {"FInputString"},
     .Text =
         "    if (%FIELDNAME% <> Value) then begin\r\n        %FIELDNAME% := Value;\r\n    end;"},
    {.Title = "Method Call",
     .Description = "Template used to build a method call.",
     .Params = {"NAME", "PAROPEN", "PARAMS", "PARCLOSE"},
     .Examples = {"CreateParams", "(", "Params", ")"},
     .Text = "    inherited $NAME%$PAROPEN%%PARAMS%%PARCLOSE$;"},
    {.Title = "Description block",
     .Description = "Template used to build a description block.",
     .Params = {"SYMBOLNAME", "DESCRIPTION"},
     .Examples = {"TList.Count",
                  "Property Count returns the count of items that are currently stored by the list "
                  "object."},
     .Text = "//VL_Desc_Begin(%SYMBOLNAME%)\r\n{%DESCRIPTION%}\r\n//VL_Desc_End"},
};

const TTemplateSource kCppSources[kCppTemplateCount] = {
    {.Title = "Visibility Specifier",
     .Description = "Template used to build a visibility specifier.",
     .Params = {"VISIBILITYSPECIFIER"},
     .Examples = {"public"},
     .Text = "%VISIBILITYSPECIFIER%:"},
    {.Title = "Field Declaration",
     .Description = "Template used to build a field declaration.",
     .Params = {"NAME", "TYPE", "CLASSNAME"},
     .Examples = {"i_Counter", "int", "TList"},
     .Text = "    %TYPE% %NAME%;"},
    {.Title = "Property Declaration",
     .Description = "Template used to build a property declaration.",
     .Params = {"NAME", "TYPE", "CLASSNAME", "SPECIFIERS", "ARRAY"},
     .Examples = {"Count", "int", "TList", "read = GetCount, write = SetCount", ""},
     .Text = "    __property $TYPE% %NAME%%ARRAY% $SPECIFIERS%;"},
    {.Title = "Property Get code",
     .Description = "Template used to build the implementation of a property get method.",
     .Params = {"IMPLEMENTATION"},
     .Examples = {"FCount"},
     .Text = "return %IMPLEMENTATION%;"},
    {.Title = "Property Set code",
     .Description = "Template used to build the implementation of a property set method.",
     .Params = {"IMPLEMENTATION"},
     .Examples = {"FCount"},
     .Text = "%IMPLEMENTATION% = value;"},
    {.Title = "Method parameter",
     .Description = "Template used to build a single parmeters in method parameter lists.",
     .Params = {"PARAMTYPE", "NAME", "PARAMARRAY", "INITIALIZER"},
     .Examples = {"int*", "i", "[2]", "= NULL"},
     .Text = "%PARAMTYPE% $NAME%%PARAMARRAY% $INITIALIZER%"},
    {.Title = "Method declaration",
     .Description = "Template used to build a declaration of a method.",
     .Params = {"NAME", "PARAMS", "RESULTTYPE", "DIRECTIVES", "EXTENDEDDIRS", "CLASSNAME",
                "VIRTUAL"},
     .Examples = {"GetMember", "int index", "int", "__fastcall", "const", "TList", "virtual"},
     .Text = "    %VIRTUAL$ %RESULTTYPE$ %DIRECTIVES$ %NAME%(%PARAMS%) $EXTENDEDDIRS%;"},
    {.Title = "Implicit inline method",
     .Description = "Template used to build a declaration of a method that is implicitly inline.",
     .Params = {"NAME", "PARAMS", "RESULTTYPE", "DIRECTIVES", "EXTENDEDDIRS", "CLASSNAME",
                "IMPLEMENTATION", "VIRTUAL"},
     .Examples = {"GetMember", "int index", "int", "__fastcall", "const", "TList",
                  "return FCount[index];", "virtual"},
     .Text = "    %VIRTUAL$ %RESULTTYPE$ %DIRECTIVES$ %NAME%(%PARAMS%) $EXTENDEDDIRS%\r\n    {\r\n "
             "       %IMPLEMENTATION%\r\n    }"},
    {.Title = "Method implementation",
     .Description = "Template used to build the implementation of a method.",
     .Params = {"NAME", "PARAMS", "RESULTTYPE", "DIRECTIVES", "EXTENDEDDIRS", "CLASSNAME",
                "IMPLEMENTATION"},
     .Examples = {"GetMember", "int index", "int", "__fastcall", "const", "TList",
                  "return FCount[index];"},
     .Text = "%RESULTTYPE$ %DIRECTIVES$ %CLASSNAME%::%NAME%(%PARAMS%) $EXTENDEDDIRS%\r\n{\r\n    "
             "%IMPLEMENTATION%\r\n}\r\n"},
    {.Title = "Message map begin",
     .Description = "Template used to build the beginning of a message map.",
     .Params = {},
     .Examples = {},
     .Text = "    BEGIN_MESSAGE_MAP"},
    {.Title = "Message handler block",
     .Description = "Template used to build a message handler within a message map.",
     .Params = {"MESSAGE_ID", "MESSAGE_TYPE", "MESSAGE_HANDLER"},
     .Examples = {"WM_GETMINMAXINFO", "TWMMinMaxInfo", "WMGetMinMaxInfo"},
     .Text = "        VCL_MESSAGE_HANDLER(%MESSAGE_ID%, %MESSAGE_TYPE%, %MESSAGE_HANDLER%)"},
    {.Title = "Message map end",
     .Description = "Template used to build the end of a message map.",
     .Params = {"BASECLASS"},
     .Examples = {"TCustomControl"},
     .Text = "    END_MESSAGE_MAP(%BASECLASS%)"},
    {.Title = "Description block",
     .Description = "Template used to build a description block.",
     .Params = {"SYMBOLNAME", "DESCRIPTION"},
     .Examples = {"TList.Count",
                  "Property Count returns the count of items that are currently stored by the list "
                  "object."},
     .Text = "//VL_Desc_Begin(%SYMBOLNAME%)\r\n/*%DESCRIPTION%*/\r\n//VL_Desc_End"},
    {.Title = "Method Call",
     .Description = "Template used to build a method call.",
     .Params = {"BASECLASS", "NAME", "PARAMS"},
     .Examples = {"TWinControl", "CreateParams", "Params"},
     .Text = "%BASECLASS%::%NAME%(%PARAMS%);"},
};

TCodeTemplate MakeTemplate(const TTemplateSource& source) {
  TCodeTemplate t;
  for (int i = 0; i < kTemplateParamSlots && source.Params[i]; ++i) {
    t.ParamNames[i] = source.Params[i];
    t.Examples[i] = source.Examples[i] ? source.Examples[i] : "";
    t.ParamCount = i + 1;
  }
  t.Template = source.Text;
  return t;
}

template <size_t N>
std::array<TCodeTemplate, N> MakeTemplates(const TTemplateSource (&sources)[N]) {
  std::array<TCodeTemplate, N> out;
  for (size_t i = 0; i < N; ++i) out[i] = MakeTemplate(sources[i]);
  return out;
}

const TTemplateSource* Source(TLanguage language, int index) {
  if (index < 0 || index >= TemplateCount(language)) return nullptr;
  return language == TLanguage::Cpp ? &kCppSources[index] : &kPascalSources[index];
}

}  // namespace

const TPascalTemplates& DefaultPascalTemplates() {
  static const TPascalTemplates templates = MakeTemplates(kPascalSources);
  return templates;
}

const TCppTemplates& DefaultCppTemplates() {
  static const TCppTemplates templates = MakeTemplates(kCppSources);
  return templates;
}

int TemplateCount(TLanguage language) {
  return language == TLanguage::Cpp ? kCppTemplateCount : kPascalTemplateCount;
}

const TCodeTemplate& DefaultTemplate(TLanguage language, int index) {
  return language == TLanguage::Cpp ? DefaultCppTemplates()[index]
                                    : DefaultPascalTemplates()[index];
}

std::string_view TemplateTitle(TLanguage language, int index) {
  const TTemplateSource* s = Source(language, index);
  return s ? s->Title : "";
}

std::string_view TemplateDescription(TLanguage language, int index) {
  const TTemplateSource* s = Source(language, index);
  return s ? s->Description : "";
}

}  // namespace velmora
