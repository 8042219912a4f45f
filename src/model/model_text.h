// A readable, complete and stable text of a class list: every record with every field the
// parsers fill, one line each, indented by nesting. `velmora dump` prints it, and the
// parsers' golden files hold it, so a change in what a parser records shows as a diff.
#pragma once

#include <string>

namespace velmora {

class TClasslist;
class TCommonClassList;

/// Classes (with their members and nested classes) in list order, then the routines, then
/// the include lists.
std::string DescribeModel(const TClasslist& list);

/// The classes of one list only, indented by `depth` steps.
void DescribeClasses(const TCommonClassList& list, int depth, std::string& out);

}  // namespace velmora
