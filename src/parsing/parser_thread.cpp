#include "parsing/parser_thread.h"

#include <sys/stat.h>

#include <chrono>
#include <map>
#include <utility>
#include <vector>

#include "model/class_list.h"
#include "parsing/cpp_parser.h"
#include "parsing/pascal_parser.h"
#include "parsing/source_parser.h"
#include "support/paths.h"
#include "support/stream.h"
#include "support/sync.h"
#include "support/text_buffer.h"

namespace velmora {
namespace {

constexpr auto kRetryPause = std::chrono::milliseconds(100);
// How often a waiting caller looks whether its own thread has ended (see WaitForEnd).
constexpr uint32_t kEndCheckMs = 50;

// One spelling per file within a job. `a.h`, `./a.h`, `sub/../a.h` and a path through a
// symbolic link all name the same file; the first spelling seen stands for all of them.
// Without this a header that includes itself as `./x.h` would be queued as `dir/./x.h`,
// then `dir/././x.h` and so on, and a pair of links to `.` would double the work at
// every level.
class TFileSpellings {
 public:
  std::string Of(const std::string& name) {
    struct stat st;
    if (::stat(name.c_str(), &st) != 0) return name;
    return names_.emplace(std::make_pair(st.st_dev, st.st_ino), name).first->second;
  }

 private:
  std::map<std::pair<dev_t, ino_t>, std::string> names_;
};

void CopyStrings(const TStringList* from, TStringList& to) {
  if (!from) return;
  for (int i = 0; i < from->Count(); ++i) to.Add(from->Strings(i));
}

// The parse semaphore is one per process: a release may come from another job's thread,
// and of two releases that meet at the maximum count one is lost. So the caller wakes on
// any release, or now and then by itself, until its own thread has ended; the end signal
// also makes everything the thread wrote visible to the caller.
void WaitForEnd(TSemaphore& signal, const TThreadEnd& end) {
  while (!end.Done() && signal.WaitFor(kEndCheckMs) == TWaitResult::Timeout) {
  }
  end.Wait();
}

void ResumeAndWait(TAbstractParserThread* thread, TSemaphore& signal) {
  const std::shared_ptr<const TThreadEnd> end = thread->EndSignal();
  thread->Resume();
  WaitForEnd(signal, *end);
}

}  // namespace

void StartParse(TClasslist& target, void* context, const std::string& fileName,
                const TStringList* includePath, const TStringList* knownFiles,
                TStringList* parsedNames, const TParserThreadOptions& options) {
  TSemaphore signal(ParseSemaphoreName());
  TAbstractParserThread* thread;
  if (LanguageOfFile(fileName) == TLanguage::Cpp)
    thread = new TCPPParserThread(fileName, includePath, knownFiles, parsedNames, options, context,
                                  &target);
  else
    thread = new TPascalParserThread(fileName, includePath, knownFiles, parsedNames, options,
                                     context, &target);
  ResumeAndWait(thread, signal);
}

void ResumeParserThread(TAbstractParserThread* thread) {
  TSemaphore signal(ParseSemaphoreName());
  ResumeAndWait(thread, signal);
}

TAbstractParserThread::TAbstractParserThread(const std::string& fileName,
                                             const TStringList* includePath,
                                             const TStringList* knownFiles,
                                             TStringList* parsedNames,
                                             const TParserThreadOptions& options, void* context,
                                             TClasslist* target)
    : FileName(fileName),
      Target(target),
      Context(context),
      ParsedNames(parsedNames),
      PascalOption(options.PascalOption ? 1 : 0),
      RetryBudget(options.RetryBudget),
      Observer(options.Observer) {
  Priority = options.Priority;
  DoneSignal = std::make_unique<TSemaphore>(ParseSemaphoreName());
  FreeOnTerminate = true;
  CopyStrings(knownFiles, KnownFiles);
  CopyStrings(includePath, IncludePath);
}

TAbstractParserThread::~TAbstractParserThread() = default;

void TAbstractParserThread::Execute() {
  // Whatever happens in here, the caller must not wait for ever.
  try {
    ParseAll();
  } catch (...) {
  }
  DoneSignal->Release();
}

void TAbstractParserThread::ParseAll() {
  TStringList done(true, TDuplicates::Ignore, true);
  TStringList queue(true, TDuplicates::Ignore, true);
  TFileSpellings spellings;
  spellings.Of(FileName);
  queue.Add(FileName);

  while (!queue.Empty()) {
    FoundIncludes.Clear();
    const std::string name = queue.Strings(0);  // the alphabetically first
    queue.Delete(0);
    const bool isRoot = name == FileName;
    if (KnownFiles.IndexOf(name) < 0) {
      // The root's own classes are the caller's to mark.
      if (!isRoot) Target->Mark(ExtractFileName(name), false);
      ParseFile(name);
    }
    // The root never enters Done: a file that includes it has it parsed once more.
    if (!isRoot) done.Add(name);
    for (int i = 0; i < FoundIncludes.Count(); ++i) {
      std::string include = FoundIncludes.Strings(i);
      if (!ResolveInclude(include, name)) continue;
      include = spellings.Of(include);
      // A root that includes itself would otherwise come back after each of its parses.
      if (isRoot && include == FileName) continue;
      if (done.IndexOf(include) < 0) queue.Add(include);
    }
  }

  TIncludeUnit* entry = nullptr;
  if (done.Empty()) {
    Target->Includes.Remove(FileName);
  } else {
    entry = Target->Includes.FindOrAdd(FileName);
    entry->IncludedNames.Clear();
  }
  for (int i = 0; i < done.Count(); ++i) {
    if (ParsedNames) ParsedNames->Add(done.Strings(i));
    if (entry) entry->IncludedNames.Add(done.Strings(i));
  }
}

std::unique_ptr<TMemoryStream> TAbstractParserThread::LoadFile(const std::string& fileName) {
  // The loaded string keeps a NUL after its last character: the tokenizers stop there.
  return std::make_unique<TMemoryStream>(LoadSourceText(fileName));
}

void TAbstractParserThread::ParseFile(const std::string& name) {
  if (!FileExists(name)) return;
  std::unique_ptr<TMemoryStream> stream;
  std::chrono::duration<double> took{};
  for (int budget = RetryBudget;; --budget) {
    try {
      stream = LoadFile(name);
      stream->Seek(0);
      const auto start = std::chrono::steady_clock::now();
      ParseStream(name, *stream);
      took = std::chrono::steady_clock::now() - start;
      break;
    } catch (...) {
      // A file the editor is saving may be unreadable for a moment.
      if (budget <= 0) return;
      std::this_thread::sleep_for(kRetryPause);
    }
  }
  if (!Observer) return;
  try {
    Observer->FileParsed(name, *stream, FoundIncludes, took.count());
  } catch (...) {
  }
}

bool TAbstractParserThread::ResolveInclude(std::string& name,
                                           const std::string& includingFile) const {
  std::vector<std::string> folders;
  folders.reserve(IncludePath.Count());
  for (int i = 0; i < IncludePath.Count(); ++i) folders.push_back(IncludePath.Strings(i));
  std::string found = ResolveIncludeFile(name, ExtractFilePath(includingFile), folders);
  if (found.empty()) return false;
  name = std::move(found);
  return true;
}

void TCPPParserThread::ParseStream(const std::string& fileName, const TMemoryStream& stream) {
  TCPPFileParser parser(ExtractFileName(fileName), 0, Target, &stream);
  parser.Parse();
  FoundIncludes = parser.IncludeNames;
}

void TPascalParserThread::ParseStream(const std::string& fileName, const TMemoryStream& stream) {
  TPascalFileParser parser(ExtractFileName(fileName), PascalOption, Target, &stream);
  parser.ParseImplementation = PascalOption != 0;
  parser.Parse();
  FoundIncludes = parser.IncludeNames;
}

}  // namespace velmora
