// TCPPTokenizer: the scanner for C++ as the C++Builder compiler reads it, extensions
// included. It is deliberately shallow: no preprocessing, no escapes inside literals, and
// numbers are runs of decimal digits only (`0x1F` reads as `0` and the identifier `x1F`);
// the finders and parsers above it live with that.
#pragma once

#include <string_view>

#include "parsing/tokenizer.h"

namespace velmora {

/// The token kinds of C++ text. Keywords come in alphabetical order with their leading
/// underscores disregarded; a suffix _1 or _2 on a keyword's name counts its leading
/// underscores (`ctFastcall_2` is `__fastcall`, `ctFastcall_1` is `_fastcall`).
enum TCppTokenKind : int {
  ctEndOfText = tkEndOfText,
  ctWhitespace = tkWhitespace,
  ctLineEnd = tkLineEnd,

  // Keywords (10..103).
  ctAsm_2 = 10,            // __asm
  ctAsm_1 = 11,            // _asm
  ctAsm = 12,              // asm
  ctAuto = 13,             // auto
  ctAutomated_2 = 14,      // __automated
  ctBreak = 15,            // break
  ctBool = 16,             // bool
  ctCase = 17,             // case
  ctCatch = 18,            // catch
  ctCdecl_2 = 19,          // __cdecl
  ctCdecl_1 = 20,          // _cdecl
  ctCdecl = 21,            // cdecl
  ctChar = 22,             // char
  ctClass = 23,            // class
  ctClassid_2 = 24,        // __classid
  ctClosure_2 = 25,        // __closure
  ctConst = 26,            // const
  ctConstCast = 27,        // const_cast
  ctContinue = 28,         // continue
  ctDeclspec_2 = 29,       // __declspec
  ctDefault = 30,          // default
  ctDelete = 31,           // delete
  ctDispid_2 = 32,         // __dispid
  ctDo = 33,               // do
  ctDouble = 34,           // double
  ctDynamicCast = 35,      // dynamic_cast
  ctElse = 36,             // else
  ctEnum = 37,             // enum
  ctExcept_2 = 38,         // __except
  ctExplicit = 39,         // explicit
  ctExport_1 = 40,         // _export
  ctExport_2 = 41,         // __export
  ctExtern = 42,           // extern
  ctFalse = 43,            // false
  ctFastcall_2 = 44,       // __fastcall
  ctFastcall_1 = 45,       // _fastcall
  ctFinally_2 = 46,        // __finally
  ctFloat = 47,            // float
  ctFor = 48,              // for
  ctFriend = 49,           // friend
  ctGoto = 50,             // goto
  ctIf = 51,               // if
  ctImport_2 = 52,         // __import
  ctImport_1 = 53,         // _import
  ctInline = 54,           // inline
  ctInt = 55,              // int
  ctInt8_2 = 56,           // __int8
  ctInt16_2 = 57,          // __int16
  ctInt32_2 = 58,          // __int32
  ctInt64_2 = 59,          // __int64
  ctLong = 60,             // long
  ctMutable = 61,          // mutable
  ctNamespace = 62,        // namespace
  ctNew = 63,              // new
  ctOperator = 64,         // operator
  ctPascal_2 = 65,         // __pascal
  ctPascal_1 = 66,         // _pascal
  ctPascal = 67,           // pascal
  ctPrivate = 68,          // private
  ctProtected = 69,        // protected
  ctProperty_2 = 70,       // __property
  ctPublic = 71,           // public
  ctPublished_2 = 72,      // __published
  ctRegister = 73,         // register
  ctReinterpretCast = 74,  // reinterpret_cast
  ctReturn = 75,           // return
  ctRtti_2 = 76,           // __rtti
  ctShort = 77,            // short
  ctSigned = 78,           // signed
  ctSizeof = 79,           // sizeof
  ctStatic = 80,           // static
  ctStaticCast = 81,       // static_cast
  ctStdcall_2 = 82,        // __stdcall
  ctStdcall_1 = 83,        // _stdcall
  ctStruct = 84,           // struct
  ctSwitch = 85,           // switch
  ctTemplate = 86,         // template
  ctThis = 87,             // this
  ctThread_2 = 88,         // __thread
  ctThrow = 89,            // throw
  ctTrue = 90,             // true
  ctTry_2 = 91,            // __try
  ctTry = 92,              // try
  ctTypedef = 93,          // typedef
  ctTypename = 94,         // typename
  ctTypeid = 95,           // typeid
  ctUnion = 96,            // union
  ctUsing = 97,            // using
  ctUnsigned = 98,         // unsigned
  ctVirtual = 99,          // virtual
  ctVoid = 100,            // void
  ctVolatile = 101,        // volatile
  ctWcharT = 102,          // wchar_t
  ctWhile = 103,           // while

  ctBlockComment = 129,      // /* ... */
  ctAndAssign = 131,         // &=
  ctSlashAssign = 132,       // /=
  ctCaretAssign = 133,       // ^=
  ctBarAssign = 134,         // |=
  ctAssign = 135,            // =
  ctPercentAssign = 136,     // %=
  ctStarAssign = 137,        // *=
  ctMinusAssign = 138,       // -=
  ctPlusAssign = 139,        // +=
  ctShiftLeftAssign = 140,   // <<=
  ctShiftRightAssign = 141,  // >>=
  ctAmpersand = 142,         // &
  ctHashHash = 144,          // ##
  ctCloseBrace = 145,        // }
  ctOpenBrace = 146,         // {
  ctBraces = 147,            // {} with nothing between
  ctCharLiteral = 148,       // '...'
  ctComma = 149,             // ,
  ctColon = 150,             // :
  ctScope = 151,             // ::
  ctQuestionColon = 152,     // ?:
  ctDotStar = 153,           // .*
  ctArrowStar = 154,         // ->*
  ctHashDefine = 155,
  ctHashElif = 156,
  ctHashElse = 157,
  ctHashEndif = 158,
  ctHashError = 159,
  ctHashIf = 160,
  ctHashIfdef = 161,
  ctHashIfndef = 162,
  ctHashInclude = 163,
  ctHashLine = 164,
  ctHash = 165,  // # not directly followed by a letter
  ctHashPragma = 166,
  ctHashUndef = 167,
  ctEqual = 169,         // ==
  ctGreater = 170,       // >
  ctGreaterEqual = 171,  // >=
  ctIdentifier = 172,
  ctCaret = 173,              // ^
  ctBar = 174,                // |
  ctLogicalAnd = 176,         // &&
  ctLogicalOr = 177,          // ||
  ctLess = 178,               // <
  ctLessEqual = 179,          // <=
  ctMinus = 180,              // -
  ctMinusMinus = 181,         // --
  ctPercent = 182,            // %
  ctNot = 183,                // !
  ctNotEqual = 184,           // !=
  ctNumber = 185,             // decimal digits only
  ctPlus = 186,               // +
  ctPlusPlus = 187,           // ++
  ctDot = 188,                // .
  ctDotDot = 189,             // ..
  ctCloseParen = 190,         // )
  ctOpenParen = 191,          // (
  ctParens = 192,             // () touching
  ctArrow = 193,              // ->
  ctSemicolon = 194,          // ;
  ctShiftLeft = 195,          // <<
  ctShiftRight = 196,         // >>, also where it closes two template argument lists
  ctSlash = 197,              // /
  ctLineComment = 198,        // // ... up to and including the next CR (and one LF after it)
  ctCloseBracket = 199,       // ]
  ctOpenBracket = 200,        // [
  ctBrackets = 201,           // [] touching
  ctStar = 202,               // *
  ctStringLiteral = 203,      // "..."
  ctUnknownPunctuator = 204,  // ? alone, @, backslash, backquote
  ctEllipsis = 205,           // ...
  ctUnknownChar = 206,        // $, characters above 126, and # with an unknown directive word
  ctTilde = 207,              // ~
};

class TCPPTokenizer : public TTokenizer {
 public:
  TCPPTokenizer();

 protected:
  void AdjustLineForComment(int32_t offset, int kind) override;
  void Tokenize() override;
};

/// A short stable name for a C++ kind number: "identifier", "kw:class", "#define", "->*",
/// "block-comment", ...; "unused" for numbers no token has.
std::string_view CppTokenKindName(int kind);

}  // namespace velmora
