// TPascalTokenizer: the scanner for Object Pascal. Keywords are found case-insensitively
// and directive words (`read`, `index`, `name`, ...) always read as their keyword kinds,
// also where Pascal would allow them as identifiers; the parsers accept that. A minus
// sign is not a token of its own but an unknown punctuator: the parsers never need it.
#pragma once

#include <string_view>

#include "parsing/tokenizer.h"

namespace velmora {

/// The token kinds of Object Pascal text. Keywords (reserved words 10..73, then directive
/// words 74..112) come in alphabetical order within each group.
enum TPascalTokenKind : int {
  ptEndOfText = tkEndOfText,
  ptWhitespace = tkWhitespace,
  ptLineEnd = tkLineEnd,

  // Reserved words (10..73) and directive words (74..112).
  ptAnd = 10,             // and
  ptArray = 11,           // array
  ptAs = 12,              // as
  ptBegin = 13,           // begin
  ptCase = 14,            // case
  ptClass = 15,           // class
  ptConst = 16,           // const
  ptConstructor = 17,     // constructor
  ptDestructor = 18,      // destructor
  ptDispinterface = 19,   // dispinterface
  ptDiv = 20,             // div
  ptDo = 21,              // do
  ptDownto = 22,          // downto
  ptElse = 23,            // else
  ptEnd = 24,             // end
  ptExcept = 25,          // except
  ptExports = 26,         // exports
  ptFile = 27,            // file
  ptFinalization = 28,    // finalization
  ptFinally = 29,         // finally
  ptFor = 30,             // for
  ptFunction = 31,        // function
  ptGoto = 32,            // goto
  ptIf = 33,              // if
  ptImplementation = 34,  // implementation
  ptIn = 35,              // in
  ptInherited = 36,       // inherited
  ptInitialization = 37,  // initialization
  ptInline = 38,          // inline
  ptInterface = 39,       // interface
  ptIs = 40,              // is
  ptLabel = 41,           // label
  ptLibrary = 42,         // library
  ptMod = 43,             // mod
  ptNil = 44,             // nil
  ptNot = 45,             // not
  ptObject = 46,          // object
  ptOf = 47,              // of
  ptOr = 48,              // or
  ptOut = 49,             // out
  ptPacked = 50,          // packed
  ptProcedure = 51,       // procedure
  ptProgram = 52,         // program
  ptProperty = 53,        // property
  ptRaise = 54,           // raise
  ptRecord = 55,          // record
  ptRepeat = 56,          // repeat
  ptResourcestring = 57,  // resourcestring
  ptSet = 58,             // set
  ptShl = 59,             // shl
  ptShr = 60,             // shr
  ptString = 61,          // string
  ptThen = 62,            // then
  ptThreadvar = 63,       // threadvar
  ptTo = 64,              // to
  ptTry = 65,             // try
  ptType = 66,            // type
  ptUnit = 67,            // unit
  ptUntil = 68,           // until
  ptUses = 69,            // uses
  ptVar = 70,             // var
  ptWhile = 71,           // while
  ptWith = 72,            // with
  ptXor = 73,             // xor
  ptAbsolute = 74,        // absolute
  ptAbstract = 75,        // abstract
  ptAssembler = 76,       // assembler
  ptAutomated = 77,       // automated
  ptCdecl = 78,           // cdecl
  ptContains = 79,        // contains
  ptDefault = 80,         // default
  ptDispid = 81,          // dispid
  ptDynamic = 82,         // dynamic
  ptExport = 83,          // export
  ptExternal = 84,        // external
  ptFar = 85,             // far
  ptForward = 86,         // forward
  ptImplements = 87,      // implements
  ptIndex = 88,           // index
  ptMessage = 89,         // message
  ptName = 90,            // name
  ptNear = 91,            // near
  ptNodefault = 92,       // nodefault
  ptOverload = 93,        // overload
  ptOverride = 94,        // override
  ptPackage = 95,         // package
  ptPascal = 96,          // pascal
  ptPrivate = 97,         // private
  ptProtected = 98,       // protected
  ptPublic = 99,          // public
  ptPublished = 100,      // published
  ptRead = 101,           // read
  ptReadonly = 102,       // readonly
  ptRegister = 103,       // register
  ptReintroduce = 104,    // reintroduce
  ptRequires = 105,       // requires
  ptResident = 106,       // resident
  ptSafecall = 107,       // safecall
  ptStdcall = 108,        // stdcall
  ptStored = 109,         // stored
  ptVirtual = 110,        // virtual
  ptWrite = 111,          // write
  ptWriteonly = 112,      // writeonly

  ptParenComment = 113,       // (* ... *)
  ptCharCode = 114,           // # and decimal digits
  ptAssign = 116,             // :=
  ptBraceComment = 118,       // { ... }
  ptColon = 119,              // :
  ptComma = 120,              // ,
  ptCompilerDirective = 121,  // {$ ... }: not a comment, significant for the parsers
  ptDotDot = 122,             // ..
  ptEqual = 123,              // =
  ptGreater = 125,            // >
  ptGreaterEqual = 126,       // >=
  ptIdentifier = 127,
  ptHexNumber = 128,          // $ and hexadecimal digits
  ptLess = 129,               // <
  ptLessEqual = 130,          // <=
  ptNotEqual = 133,           // <>
  ptNumber = 134,             // decimal digits only
  ptPlus = 135,               // +
  ptDot = 136,                // .
  ptCloseParen = 137,         // )
  ptOpenParen = 138,          // (
  ptSemicolon = 139,          // ;
  ptLineComment = 140,        // // ... up to and including the next CR (and one LF after it)
  ptCloseBracket = 141,       // ] or .)
  ptOpenBracket = 142,        // [ or (.
  ptStar = 143,               // *
  ptUnknownPunctuator = 144,  // other printable punctuation, the minus sign included
  ptUnknownChar = 145,        // |, a } with no opening brace, characters above 126
  ptSlash = 146,              // /
  ptAmpersand = 147,          // &
  ptAt = 148,                 // @
  ptCaret = 149,              // ^
  ptStringLiteral = 150,      // '...', one token per quoted piece
};

class TPascalTokenizer : public TTokenizer {
 public:
  TPascalTokenizer();

 protected:
  void AdjustLineForComment(int32_t offset, int kind) override;
  void Tokenize() override;
};

/// A short stable name for a Pascal kind number: "identifier", "kw:begin", "directive",
/// ":=", "brace-comment", ...; "unused" for numbers no token has.
std::string_view PascalTokenKindName(int kind);

}  // namespace velmora
