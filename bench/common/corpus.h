// Real code for the benchmarks, read into memory before any timing:
//   LCL   every *.pas, *.pp and *.inc under /usr/lib/lazarus/*/lcl (package lazarus-src)
//   Qt6   every regular file under /usr/include/x86_64-linux-gnu/qt6 (package qt6-base-dev)
// Files are held in buffer form (CR LF line ends, converted while loading), as the parser
// threads hold them: in an LF file a `//` comment would run to the end of the file and the
// figures would measure a search for CR instead of real work. universal-ctags runs over the
// same files as they are on disk, wall-clock timed, its start-up included. Every rate is
// of the bytes on disk, so that the figures compare.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velmora::bench {

struct Corpus {
  std::string name;
  bool pascal = false;
  std::vector<std::string> paths;
  std::vector<std::string> texts;  // std::string keeps a NUL after the last character
  int64_t bytes = 0;               // of the texts in buffer form
  int64_t diskBytes = 0;           // of the files as ctags reads them
};

Corpus LoadLcl();
Corpus LoadQt();
/// Both corpora; a missing one is reported on stdout and left out.
std::vector<std::unique_ptr<Corpus>> LoadCorpora();

/// Registers "Ctags/<corpus>" (three timed runs of ctags over the corpus' files).
void RegisterCtags(const Corpus& corpus);

/// Keeps the best rate of each benchmark (over repetitions, if any) for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  SummaryReporter();
  void ReportRuns(const std::vector<Run>& runs) override;
  /// A table of "<ours>/<corpus>" against "Ctags/<corpus>" in MB/s (10^6 bytes) and their ratio.
  void PrintComparison(const std::string& ours,
                       const std::vector<std::unique_ptr<Corpus>>& corpora) const;

  std::map<std::string, double> bestRate;  // benchmark name -> bytes per second
};

/// Removes the temporary file lists RegisterCtags wrote.
void RemoveCtagsLists();

}  // namespace velmora::bench
