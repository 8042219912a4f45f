#include "parsing/parse_job.h"

#include <thread>
#include <utility>

#include "parsing/include_walk.h"
#include "parsing/source_provider.h"

namespace velmora {
namespace {

constexpr auto kRetryPause = std::chrono::milliseconds(100);

// Either token ends the walk: the queue's (cancel by generation, shutdown) or the caller's.
class TEitherStop {
 public:
  TEitherStop(std::stop_token a, std::stop_token b)
      : a_(std::move(a)),
        b_(std::move(b)),
        ca_(a_, [this] { both_.request_stop(); }),
        cb_(b_, [this] { both_.request_stop(); }) {}
  std::stop_token Token() const { return both_.get_token(); }

 private:
  std::stop_source both_;
  std::stop_token a_, b_;
  std::stop_callback<std::function<void()>> ca_, cb_;
};

}  // namespace

TParseJobHooks MakeParseJobHooks(const TParseRequest& request, const TSourceProvider& sources,
                                 std::function<void(std::chrono::milliseconds)> pause) {
  TParseJobHooks hooks;
  hooks.Exists = [&sources](const std::string& path) { return sources.Exists(path); };
  hooks.Load = [&sources](const std::string& path) { return sources.Read(path); };
  const TLanguage language = request.Language.value_or(LanguageOfFile(request.RootFile));
  const TParseOptions options{.WantPositions = request.Options.WantPositions,
                              .ParseImplementation = request.Options.PascalOption};
  hooks.Parse = [language, options](const std::string& path, std::string text) {
    return ParseText(path, language, std::move(text), options);
  };
  hooks.Pause = pause ? std::move(pause)
                      : [](std::chrono::milliseconds ms) { std::this_thread::sleep_for(ms); };
  return hooks;
}

TParseResult RunParseJob(const TParseRequest& request, const TParseJobHooks& hooks,
                         std::stop_token stop) {
  TParseResult result;
  result.RootFile = request.RootFile;
  result.Generation = request.Generation;
  result.Context = request.Context;
  try {
    TStringList known(true, TDuplicates::Ignore, true);
    for (const std::string& file : request.KnownFiles) known.Add(file);
    TIncludeResolver resolver(request.IncludePath);
    static const std::vector<std::string> kNothing;
    const TEitherStop either(stop, request.Stop);

    // Parses one file, trying again while the budget lasts: a file the editor is saving
    // may be unreadable for a moment.
    auto step = [&](const std::string& path) -> const std::vector<std::string>* {
      if (!hooks.Exists(path)) return nullptr;
      for (int budget = request.Options.RetryBudget;; --budget) {
        try {
          result.Files.push_back(hooks.Parse(path, hooks.Load(path)));
          return request.FollowIncludes ? &result.Files.back().IncludeNames : &kNothing;
        } catch (...) {
          if (budget <= 0) return nullptr;
          hooks.Pause(kRetryPause);
        }
      }
    };
    TIncludeWalk walk = WalkIncludes(request.RootFile, resolver, known, step, either.Token());
    result.Reached = std::move(walk.Reached);
    result.Cancelled = walk.Stopped;
  } catch (...) {
    // Whatever goes wrong outside the per-file attempts (memory, say), the caller hears
    // back; what was parsed so far is a cancelled result the merge ignores.
    result.Cancelled = true;
  }
  return result;
}

}  // namespace velmora
