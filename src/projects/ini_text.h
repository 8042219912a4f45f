// The ini-style text that C++Builder keeps inside its project files (the block after
// `!ifdef IDEOPTIONS` in a make-file, the IDEOPTIONS element of the XML form) and that
// Delphi writes beside a program (`.dof`). Only reading is needed here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::projects {

/// Sections and keys compare without regard to case; the first of two equal keys wins,
/// as it does in the IDE. Lines that are neither a section nor `key=value` are ignored.
/// Not changed after construction: reads may come from any thread.
class TIniText {
 public:
  explicit TIniText(std::string_view text);
  std::optional<std::string> Value(std::string_view section, std::string_view key) const;

 private:
  struct TEntry {
    std::string Section, Key, Value;
  };
  std::vector<TEntry> entries_;
};

}  // namespace velmora::projects
