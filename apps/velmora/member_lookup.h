// Finding a class of an open project's model by name (nested classes too) for the
// commands that name one: goto and the add-member commands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora {
class TClassDescription;
class TCommonClassList;
}  // namespace velmora

namespace velmora::app {

/// The class called `name` at any depth ("Outer::Inner" walks the nesting), compared
/// case-sensitively first and then, for Pascal classes, letter case aside; null if none.
TClassDescription* FindClassByName(const TCommonClassList& list, std::string_view name);

/// The full path of a unit name as the model records it (possibly only the file's name):
/// the file of `files` (absolute paths) that is the name or ends in "/" + the name, letter
/// case aside; the name itself when none does.
std::string ResolveUnitFile(const std::string& unitName, const std::vector<std::string>& files);

}  // namespace velmora::app
