// The display forms of the class view: which text, image and place a node shows for each
// kind of model object, as the settings ("ShowMethArgs", "ShowMemTypes") choose them.
#pragma once

#include <string>

#include "views/class_view_node.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TVLSettings;

/// Image of the domain nodes and of the routine list nodes; the model's own images stop
/// at 21.
inline constexpr int kDomainImage = 22;
inline constexpr int kRoutineListImage = 23;
inline constexpr int kRootImage = 0;

/// The text of the routine list node under each class root.
inline constexpr char kRoutineListText[] = "Global Routines";

/// Options of the display texts, from the settings.
struct TDisplayForms {
  bool ShowMethArgs = true;  ///< methods and routines with their arguments and result
  bool ShowMemTypes = true;  ///< fields and properties with their types

  static TDisplayForms FromSettings(const TVLSettings& settings);
};

/// Fills the node's Text, ImageIndex, Visibility, FileName and Line from its object.
/// A class's image asks its own class list, then `others` (the other root's list, may
/// be null), whether it descends from TForm: a project form's TForm is external.
void DescribeNode(TClassViewNode& node, const TDisplayForms& forms, const TClasslist* others);

}  // namespace velmora
