// Parser threads: one source file parsed on a background thread together with every file
// it includes, transitively, and the include relation written into the class list.
//
// A job calls StartParse and is blocked until the thread signals completion through the
// process-wide parse semaphore. The thread resolves include names against the including
// file's folder and the include path, loads each file from disk (never from an editor
// buffer), runs the file parser of its language into the target and finally rewrites the
// target's include entry for the root file.
//
// Threads and locks: the parser thread writes into the target without taking its Lock;
// holding it is the calling job's business. The caller is blocked meanwhile, and
// StartParse returns only after its own thread has ended, so the caller may read the
// target at once.
#pragma once

#include <memory>
#include <string>

#include "support/stringlist.h"
#include "support/thread.h"

namespace velmora {

class TClasslist;
class TMemoryStream;
class TSemaphore;

/// Told about each file a parser thread has parsed; called on the parser thread, while
/// the caller of StartParse waits. Must not throw.
class TParseObserver {
 public:
  virtual ~TParseObserver() = default;
  /// `name` as the thread spells it, its text in buffer form, the include names its
  /// parser reported, and the seconds the parse took (loading excluded).
  virtual void FileParsed(const std::string& name, const TMemoryStream& text,
                          const TStringList& includeNames, double seconds) = 0;
};

/// What the settings decide about a parse; the host fills it from its settings.
struct TParserThreadOptions {
  /// Further attempts at a file whose load or parse failed, 100 ms apart.
  int RetryBudget = 2;
  TThreadPriority Priority = TThreadPriority::Normal;
  /// Handed to the Pascal file parser only: its option byte, and whether it goes on past
  /// `implementation`.
  bool PascalOption = false;
  /// Not a setting: lets a caller see each parsed file. Not owned, may be null.
  TParseObserver* Observer = nullptr;
};

/// Parses `fileName` and the files it includes into `target` on a parser thread and
/// returns when that thread has ended. `includePath` (folders tried in order after the
/// including file's own) and `knownFiles` (files already current, not parsed again) are
/// copied; `parsedNames`, when given, receives every file reached besides the root. Raises
/// ESemaphoreError when the parse semaphore cannot be had; everything else that goes
/// wrong in a file is retried and then passed over.
void StartParse(TClasslist& target, void* context, const std::string& fileName,
                const TStringList* includePath, const TStringList* knownFiles,
                TStringList* parsedNames, const TParserThreadOptions& options);

class TAbstractParserThread : public TThread {
 public:
  /// Created suspended, freeing itself when it ends; opens the parse semaphore by name.
  TAbstractParserThread(const std::string& fileName, const TStringList* includePath,
                        const TStringList* knownFiles, TStringList* parsedNames,
                        const TParserThreadOptions& options, void* context, TClasslist* target);
  ~TAbstractParserThread() override;

  std::string FileName;      ///< the root file, as the caller spelled it
  TClasslist* Target;        ///< not owned
  void* Context;             ///< the caller's; kept, not used here
  TStringList* ParsedNames;  ///< not owned, may be null
  TStringList KnownFiles{true, TDuplicates::Ignore, true};
  std::unique_ptr<TSemaphore> DoneSignal;
  /// In the caller's order: which of two same-named headers wins is the user's choice.
  TStringList IncludePath{false, TDuplicates::Ignore, true};
  uint8_t PascalOption;
  /// The include names the last parsed file's parser reported.
  TStringList FoundIncludes{true, TDuplicates::Ignore, false};
  int RetryBudget;
  TParseObserver* Observer;

 protected:
  void Execute() override;
  /// Runs this thread's file parser over `stream` (buffer form, NUL-terminated) into
  /// Target and puts the include names it reports into FoundIncludes.
  virtual void ParseStream(const std::string& fileName, const TMemoryStream& stream) = 0;
  /// Reads a file whole into buffer form; raises when it cannot be read.
  virtual std::unique_ptr<TMemoryStream> LoadFile(const std::string& fileName);
  /// Loads and parses one file, trying again RetryBudget times, 100 ms apart; a file that
  /// does not exist is passed over, one that keeps failing is given up silently.
  void ParseFile(const std::string& name);
  /// Replaces `name` by the existing file it names, seen from `includingFile`.
  bool ResolveInclude(std::string& name, const std::string& includingFile) const;

 private:
  void ParseAll();
};

class TCPPParserThread : public TAbstractParserThread {
 public:
  using TAbstractParserThread::TAbstractParserThread;

 protected:
  void ParseStream(const std::string& fileName, const TMemoryStream& stream) override;
};

class TPascalParserThread : public TAbstractParserThread {
 public:
  using TAbstractParserThread::TAbstractParserThread;

 protected:
  void ParseStream(const std::string& fileName, const TMemoryStream& stream) override;
};

/// The second half of StartParse, for a thread the caller made itself (new, not yet
/// resumed): resumes it and returns when it has ended and freed itself.
void ResumeParserThread(TAbstractParserThread* thread);

}  // namespace velmora
