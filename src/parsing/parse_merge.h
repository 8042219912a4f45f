// Merging finished parses into a live model: the one place where a unit's records are
// marked, found or added, and swept. Existing objects are updated in place, so a view
// that holds a class, field or method keeps its item across a re-parse as long as the
// source still declares it; only what the parse no longer found is freed.
//
// Threads and locks: runs on the thread that owns the model (the host's main thread, or
// the caller of StartParse for its own target), holding the model's Lock. The parses it
// reads are values nobody else touches any more.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "parsing/file_parse.h"
#include "parsing/parse_job.h"

namespace velmora {

enum class TMergeMode : uint8_t {
  /// The parse stands for its unit: the unit's classes and routines are marked invalid
  /// first and what the parse did not find again is swept afterwards.
  Replace,
  /// The records are added to what the model holds, nothing is removed: for a model built
  /// from scratch in which several files may share a unit name (widget-set include files
  /// of one name in different folders) and add up.
  Accumulate,
  /// The unit's records are marked invalid first, but nothing is swept: a record the
  /// parse does not find again stays, invalid, and a later parse may take it over (a
  /// method or routine whose signature changed). How `velmora dump` has always merged
  /// the included files of its jobs; its output stays as it was with it.
  MarkWithoutSweep,
};

/// Puts the records of one file into `model`: each class found or added by name (nested
/// classes likewise), each field, method and routine found or added as the parsers find
/// them, their attributes taken from the parse. The include entry is not touched.
void MergeFileParse(TClasslist& model, const TFileParse& parse, TMergeMode mode);

/// MergeFileParse in Accumulate mode for a unit the model holds no records of (no class
/// of that UnitName, no routine of that FileName): the routines and the classes the model
/// does not have yet are moved over instead of copied, which leaves the parse without
/// them. The model is the same either way.
void MergeNewUnitParse(TClasslist& model, TFileParse& parse);

/// Merges a job's files in the order parsed (each replacing its unit), then rewrites the
/// root's include entry: the files reached, or no entry when none was. A cancelled result
/// changes nothing.
void MergeParseResult(TClasslist& model, const TParseResult& result);

/// MergeParseResult for a host that keeps one model current: remembers the generation
/// merged per root file and drops an older result. It also keeps an index of the records
/// each unit holds in the model, so that a merge marks and sweeps those alone instead of
/// walking every class and routine of the model for each file (opening a project merges
/// thousands of files). The index holds as long as the merger is the only one to change
/// the model's classes and routines; see Rescan.
class TParseMerger {
 public:
  explicit TParseMerger(TClasslist& model) : model_(model) {}

  /// Call when the model was changed other than through this merger (loaded, cleared,
  /// parsed into directly): the units it holds are looked up again before the next merge.
  void Rescan() { scanned_ = false; }

  /// False (nothing changed) for a cancelled result or one older than the generation
  /// already merged for its root; takes the model's Lock while it merges. Takes the
  /// result: the routines of a unit new to the model move into it instead of being copied.
  bool Merge(TParseResult result);
  /// The last merged generation of `rootFile`, 0 when none was.
  uint64_t MergedGeneration(const std::string& rootFile) const;

 private:
  TClasslist& model_;
  std::map<std::string, uint64_t> merged_;  ///< root file -> generation last merged
  /// What one unit holds in the model, as far as the merges have put it there.
  struct TUnitRecords {
    /// Top-level classes the unit declared; a name whose class now has another UnitName
    /// (declared again by a later unit) is skipped when it is met.
    std::vector<std::string> Classes;
    /// The unit's routines (FileName), owned by the model; exact, as a routine belongs to
    /// one file for good.
    std::vector<TProcDescription*> Routines;
  };
  void Scan();
  void MergeNewUnit(TFileParse& parse, TUnitRecords& records);
  void ReplaceUnit(const TFileParse& parse, TUnitRecords& records);

  /// By upper-cased unit name; valid while scanned_.
  std::map<std::string, TUnitRecords> units_;
  bool scanned_ = false;
};

}  // namespace velmora
