// Code markers: comments of a fixed form that the user puts into a source file to say
// where generated implementation code and help descriptions belong. This file has their
// kinds, their comment styles, the text of a new marker and the reading of a comment as
// a marker; TMarkerPositionFinder (marker_position_finder.h) finds them in a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/code_object.h"

namespace velmora {

/// What a marker stands for; the numbers are the ones the finder reports.
enum TMarkerKind : int {
  mkNone = 0,          // not a marker
  mkInsertEnd = 1,     // Marker(Insert_End): generated code of any class goes before it
  mkClassMethod = 2,   // ClassMarker_Method(Class): the end of a class's implementations
  mkMethodMarker = 3,  // Method_Marker(Class.Method): the start of one implementation
  mkDescBegin = 4,     // VL_Desc_Begin(Symbol): a help description starts
  mkDescEnd = 5,       // VL_Desc_End: and ends
  mkDescInclude = 6,   // VL_Desc_Include(Name)
};

/// How a marker comment is written: 0 `//`, 1 `(* *)`, 2 `{ }` for Pascal; 3 `//`, 4
/// `/* */` for C++.
enum TMarkerCommentStyle : int {
  mcsPascalLine = 0,
  mcsPascalParen = 1,
  mcsPascalBrace = 2,
  mcsCppLine = 3,
  mcsCppBlock = 4,
};

/// The marker's name as written in the source ("" for mkNone or an unknown kind).
std::string_view MarkerName(int kind);
/// True for the kinds written with an argument in parentheses (2, 3, 4 and 6).
bool MarkerHasArgument(int kind);

/// A new marker: the style's opening, the name, "(argument)" when the kind takes one, and
/// the style's closing: "//ClassMarker_Method(TFoo)", "{Marker(Insert_End)}". Empty for
/// mkNone, an unknown kind or an unknown style.
std::string MarkerText(int kind, int style, std::string_view argument = {});

/// The style a language's setting selects: Pascal 0..2 as they are; C++ 3 and 4 as they
/// are, and 0 and 1 (the C++ choices counted from zero) as 3 and 4. Anything else is the
/// language's line comment.
int MarkerStyleForSetting(TLanguage language, int32_t setting);

struct TMarkerClass {
  int Kind = mkNone;
  std::string Argument;  ///< for kinds 2, 3, 4 and 6; empty otherwise

  bool operator==(const TMarkerClass&) const = default;
};

/// Reads a comment token's text (delimiters included) as a marker, in any comment style
/// and any letter case. The argument is what follows the name, trimmed, with one "(" in
/// front and one ")" at the end taken off. "VL_Desc_End" and "Marker(Insert_End)" are
/// markers only when nothing else is in the comment.
TMarkerClass ClassifyComment(std::string_view comment);

}  // namespace velmora
