#include "addin/menu_table.h"

namespace velmora {
namespace {

using K = TVLMenuItemKind;
using C = TVLMenuCommand;

constexpr int kMarkerSubmenu = 21;

struct TResString {
  int Id;
  std::string_view Text;
};

// The root's caption has an id of its own, outside the run the entries use; both hold
// the same text.
constexpr TResString kStrings[] = {
    {65279, "&Velmora"},
    {65248, "-"},
    {65249, "&Velmora"},
    {65250, "Class &Hierarchy"},
    {65251, "Co&ntext Bar"},
    {65252, "&Options..."},
    {65253, "P&roject Options..."},
    {65254, "-"},
    {65255, "&Help Export Manager..."},
    {65256, "-"},
    {65257, "&Find..."},
    {65258, "Quick &Code Find"},
    {65259, "Quick &Tree Find"},
    {65260, "&Browse Back"},
    {65261, "Browse Histor&y"},
    {65262, "-"},
    {65263, "Add F&ield..."},
    {65232, "Add &Property..."},
    {65233, "Add Me&thod..."},
    {65234, "Add &Description..."},
    {65235, "-"},
    {65236, "Insert Code &Marker"},
    {65237, "&Global insert end"},
    {65238, "&Class implementation end"},
    {65239, "&Method implementation begin"},
    {65240, "&Help Description"},
    {65241, "-"},
    {65242, "Velmora He&lp"},
    {65243, "&About..."},
};

}  // namespace

const TVLMenuRecord kVLMenuRecords[kVLMenuRecordCount] = {
    {"VLRootMenuItem", 65279, K::Root, -1, {}},
    // Kept in the table but never inserted: the menu opens with the class view command.
    {"VLSeparatorMenuItem1", 65248, K::Unused, 0, {}},
    {"VLMenuItem", 65249, K::Command, 0, C::ShowClassView},
    {"VLClassHierarchyMenuItem", 65250, K::Command, 0, C::ShowClassHierarchy},
    {"VLContextBarMenuItem", 65251, K::Command, 0, C::ShowContextBar},
    {"VLOptionsMenuItem", 65252, K::Command, 0, C::Options},
    {"VLProjectOptionsMenuItem", 65253, K::Command, 0, C::ProjectOptions},
    {"VLSeparatorMenuItem2", 65254, K::Separator, 0, {}},
    {"VLExportHelpMenuItem", 65255, K::Command, 0, C::HelpExportManager},
    {"VLSeparatorMenuItem3", 65256, K::Separator, 0, {}},
    {"VLFindMenuItem", 65257, K::Command, 0, C::Find},
    {"VLQuickFindCodeMenuItem", 65258, K::Command, 0, C::QuickFindCode},
    {"VLQuickFindTreeMenuItem", 65259, K::Command, 0, C::QuickFindTree},
    {"VLBrowseBackMenuItem", 65260, K::Command, 0, C::BrowseBack},
    {"VLBrowseHistoryMenuItem", 65261, K::Command, 0, C::BrowseHistory},
    {"VLSeparatorMenuItem4", 65262, K::Separator, 0, {}},
    {"VLAddFieldMenuItem", 65263, K::Command, 0, C::AddField},
    {"VLAddPropertyMenuItem", 65232, K::Command, 0, C::AddProperty},
    {"VLAddMethodMenuItem", 65233, K::Command, 0, C::AddMethod},
    {"VLAddDescriptionMenuItem", 65234, K::Command, 0, C::AddDescription},
    {"VLSeparatorMenuItem5", 65235, K::Separator, 0, {}},
    {"VLCodeInsertMenuItem", 65236, K::Submenu, 0, {}},
    {"VLCodeInsertGlobalMarkerMenuItem", 65237, K::Command, kMarkerSubmenu, C::InsertGlobalMarker},
    {"VLCodeInsertClassMarkerMenuItem", 65238, K::Command, kMarkerSubmenu, C::InsertClassMarker},
    {"VLCodeInsertMethodMarkerMenuItem", 65239, K::Command, kMarkerSubmenu, C::InsertMethodMarker},
    {"VLCodeInsertHelpDescriptionMenuItem", 65240, K::Command, kMarkerSubmenu,
     C::InsertHelpDescriptionMarker},
    {"VLSeparatorMenuItem6", 65241, K::Separator, 0, {}},
    {"VLHelpMenuItem", 65242, K::Command, 0, C::Help},
    {"VLAboutMenuItem", 65243, K::Command, 0, C::About},
};

int MenuRecordIndex(std::string_view name) {
  for (int i = 0; i < kVLMenuRecordCount; ++i)
    if (kVLMenuRecords[i].Name == name) return i;
  return -1;
}

std::string_view LoadResString(int id) {
  for (const TResString& s : kStrings)
    if (s.Id == id) return s.Text;
  return {};
}

}  // namespace velmora
