// Parser threads: one source file parsed together with every file it includes,
// transitively, and the include relation written into the class list.
//
// Both ways in run the same parse job (parse_job.h) and the same merge (parse_merge.h):
// StartParse posts the job to the shared parse queue and waits for its result in process
// (no named semaphore: a release meant for another job can no longer wake this one);
// TAbstractParserThread runs it on a thread of its own, for a caller that wants to choose
// the parser or the loading. Either way the job parses into values and the caller's
// thread merges them into the target once the job has ended.
//
// Threads and locks: the target is changed only on the caller's thread, after the job
// has ended, and without taking its Lock: holding it is the calling job's business.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "parsing/parse_job.h"
#include "support/stringlist.h"
#include "support/thread.h"

namespace velmora {

class TClasslist;

/// What the settings decide about a parse; the host fills it from its settings.
using TParserThreadOptions = TParseJobOptions;

/// Parses `fileName` and the files it includes on the shared parse queue, merges the
/// result into `target` and returns. `includePath` (folders tried in order after the
/// including file's own) and `knownFiles` (files already current, not parsed again) are
/// copied; `parsedNames`, when given, receives every file reached besides the root.
/// Every unit parsed replaces its records in `target` (mark, find or add, sweep); the
/// root's include entry lists the files reached. Whatever goes wrong in a file is retried
/// and then passed over.
void StartParse(TClasslist& target, void* context, const std::string& fileName,
                const TStringList* includePath, const TStringList* knownFiles,
                TStringList* parsedNames, const TParserThreadOptions& options);

/// The parse request StartParse makes of its arguments.
TParseRequest MakeParseRequest(const std::string& fileName, const TStringList* includePath,
                               const TStringList* knownFiles, const TParserThreadOptions& options);

/// A parse job on a thread of its own; the language classes below choose the parser.
/// Created suspended, freeing itself when it ends: ResumeParserThread starts it, waits
/// and merges.
class TAbstractParserThread : public TThread {
 public:
  TAbstractParserThread(const std::string& fileName, const TStringList* includePath,
                        const TStringList* knownFiles, TStringList* parsedNames,
                        const TParserThreadOptions& options, TClasslist* target);
  ~TAbstractParserThread() override;

  std::string FileName;      ///< the root file, as the caller spelled it
  TClasslist* Target;        ///< not owned; changed by ResumeParserThread, never here
  TStringList* ParsedNames;  ///< not owned, may be null
  TParseRequest Request;     ///< the job: root, include path, known files, options
  /// Waits between two attempts at a file; the wall clock unless a test sets another.
  std::function<void(std::chrono::milliseconds)> Pause;
  /// Where the job's result lands; shared with ResumeParserThread, which outlives the
  /// thread object.
  std::shared_ptr<TParseResult> Outcome = std::make_shared<TParseResult>();

 protected:
  void Execute() override;
  /// Runs this thread's file parser over `text` (buffer form, NUL after size()).
  virtual TFileParse ParseStream(const std::string& fileName, std::string text) = 0;
  /// Reads a file whole into buffer form; raises when it cannot be read.
  virtual std::string LoadFile(const std::string& fileName);
};

class TCPPParserThread : public TAbstractParserThread {
 public:
  using TAbstractParserThread::TAbstractParserThread;

 protected:
  TFileParse ParseStream(const std::string& fileName, std::string text) override;
};

class TPascalParserThread : public TAbstractParserThread {
 public:
  using TAbstractParserThread::TAbstractParserThread;

 protected:
  TFileParse ParseStream(const std::string& fileName, std::string text) override;
};

/// Starts a thread the caller made itself (new, not yet resumed), waits until it has ended
/// and freed itself, then merges its result into its Target and fills its ParsedNames.
void ResumeParserThread(TAbstractParserThread* thread);

}  // namespace velmora
