#include "parsing/parser_thread.h"

#include <future>
#include <thread>
#include <utility>

#include "model/class_list.h"
#include "parsing/parse_merge.h"
#include "parsing/parse_queue.h"
#include "parsing/source_provider.h"

namespace velmora {
namespace {

std::vector<std::string> VectorOf(const TStringList* list) {
  std::vector<std::string> names;
  if (!list) return names;
  names.reserve(list->Count());
  for (int i = 0; i < list->Count(); ++i) names.push_back(list->Strings(i));
  return names;
}

void Finish(const TParseResult& result, TClasslist& target, TStringList* parsedNames) {
  MergeParseResult(target, result);
  if (!parsedNames) return;
  for (const std::string& name : result.Reached) parsedNames->Add(name);
}

}  // namespace

TParseRequest MakeParseRequest(const std::string& fileName, const TStringList* includePath,
                               const TStringList* knownFiles, const TParserThreadOptions& options) {
  TParseRequest request;
  request.RootFile = fileName;
  // The include path keeps the caller's order but each folder once.
  TStringList folders(false, TDuplicates::Ignore, true);
  for (const std::string& dir : VectorOf(includePath)) folders.Add(dir);
  request.IncludePath = VectorOf(&folders);
  request.KnownFiles = VectorOf(knownFiles);
  request.Options = options;
  return request;
}

void StartParse(TClasslist& target, void* /*context*/, const std::string& fileName,
                const TStringList* includePath, const TStringList* knownFiles,
                TStringList* parsedNames, const TParserThreadOptions& options) {
  std::promise<TParseResult> done;
  std::future<TParseResult> result = done.get_future();
  TParseRequest request = MakeParseRequest(fileName, includePath, knownFiles, options);
  // The shared queue hands each result to the promise its context names.
  request.Context = &done;
  SharedParseQueue().Post(std::move(request));
  Finish(result.get(), target, parsedNames);
}

TAbstractParserThread::TAbstractParserThread(
    const std::string& fileName, const TStringList* includePath, const TStringList* knownFiles,
    TStringList* parsedNames, const TParserThreadOptions& options, TClasslist* target)
    : FileName(fileName),
      Target(target),
      ParsedNames(parsedNames),
      Request(MakeParseRequest(fileName, includePath, knownFiles, options)) {
  Priority = options.Priority;
  FreeOnTerminate = true;
}

TAbstractParserThread::~TAbstractParserThread() = default;

void TAbstractParserThread::Execute() {
  TParseJobHooks hooks = MakeParseJobHooks(Request, DiskSources(), Pause);
  hooks.Load = [this](const std::string& name) { return LoadFile(name); };
  hooks.Parse = [this](const std::string& name, std::string text) {
    return ParseStream(name, std::move(text));
  };
  *Outcome = RunParseJob(Request, hooks);
}

std::string TAbstractParserThread::LoadFile(const std::string& fileName) {
  return DiskSources().Read(fileName);
}

TFileParse TCPPParserThread::ParseStream(const std::string& fileName, std::string text) {
  return ParseText(fileName, TLanguage::Cpp, std::move(text),
                   {.WantPositions = Request.Options.WantPositions});
}

TFileParse TPascalParserThread::ParseStream(const std::string& fileName, std::string text) {
  return ParseText(fileName, TLanguage::Pascal, std::move(text),
                   {.WantPositions = Request.Options.WantPositions,
                    .ParseImplementation = Request.Options.PascalOption});
}

void ResumeParserThread(TAbstractParserThread* thread) {
  const std::shared_ptr<const TThreadEnd> end = thread->EndSignal();
  const std::shared_ptr<TParseResult> outcome = thread->Outcome;
  TClasslist* target = thread->Target;
  TStringList* parsedNames = thread->ParsedNames;
  thread->Resume();
  end->Wait();
  if (target) Finish(*outcome, *target, parsedNames);
}

}  // namespace velmora
