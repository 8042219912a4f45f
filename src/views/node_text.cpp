#include "views/node_text.h"

#include "model/class_list.h"
#include "settings/vl_settings.h"

namespace velmora {

TDisplayForms TDisplayForms::FromSettings(const TVLSettings& settings) {
  return {.ShowMethArgs = settings.ShowMethArgs(), .ShowMemTypes = settings.ShowMemTypes()};
}

namespace {

const TCommonClassList* RootOf(const TClassDescription& cls) {
  return cls.OwnerList ? cls.OwnerList->RootList : nullptr;
}

void DescribeClass(TClassViewNode& node, const TClassDescription& cls, const TClasslist* others) {
  node.Text = cls.GetDisplayText(0);
  const TCommonClassList* root = RootOf(cls);
  node.ImageIndex =
      cls.GetImageIndex([root, others](const TClassDescription& c, std::string_view ancestor) {
        return TCommonClassList::InheritsFrom(root, others, ancestor, c);
      });
  node.FileName = cls.UnitName;
  node.Line = cls.StartLine;
}

}  // namespace

void DescribeNode(TClassViewNode& node, const TDisplayForms& forms, const TClasslist* others) {
  node.HasVisibility = false;
  node.FileName.clear();
  node.Line = -1;
  switch (node.Kind) {
    case TNodeKind::Root:
      node.ImageIndex = kRootImage;
      return;
    case TNodeKind::Class:
      DescribeClass(node, static_cast<const TClassDescription&>(*node.Object), others);
      return;
    case TNodeKind::Field:
    case TNodeKind::Property: {
      const auto& field = static_cast<const TFieldDescription&>(*node.Object);
      node.Text = field.GetDisplayText(forms.ShowMemTypes ? unsigned{toWithType} : 0u);
      node.ImageIndex = field.GetImageIndex();
      node.Visibility = field.Visibility;
      node.HasVisibility = true;
      if (field.OwnerClass) node.FileName = field.OwnerClass->UnitName;
      node.Line = field.StartLine;
      return;
    }
    case TNodeKind::Method: {
      const auto& method = static_cast<const TMethodDescription&>(*node.Object);
      node.Text = method.GetDisplayText(forms.ShowMethArgs ? unsigned{toShowArguments} : 0u);
      node.ImageIndex = method.GetImageIndex();
      node.Visibility = method.Visibility;
      node.HasVisibility = true;
      if (method.OwnerClass) node.FileName = method.OwnerClass->UnitName;
      node.Line = method.StartLine;
      return;
    }
    case TNodeKind::Routine: {
      const auto& routine = static_cast<const TProcDescription&>(*node.Object);
      node.Text = routine.GetDisplayText(forms.ShowMethArgs ? unsigned{toShowArguments} : 0u);
      node.ImageIndex = routine.GetImageIndex();
      node.FileName = routine.FileName;
      node.Line = routine.StartLine;
      return;
    }
    case TNodeKind::Domain:
      node.Text = static_cast<const TDomain&>(*node.Object).GetDisplayText(0);
      node.ImageIndex = kDomainImage;
      return;
    case TNodeKind::RoutineList:
      node.Text = kRoutineListText;
      node.ImageIndex = kRoutineListImage;
      return;
    case TNodeKind::File: {
      const auto& file = static_cast<const TFileDescription&>(*node.Object);
      node.Text = file.GetDisplayText(0);
      node.ImageIndex = file.GetImageIndex();
      return;
    }
  }
}

}  // namespace velmora
