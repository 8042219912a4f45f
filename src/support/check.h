// VELMORA_DCHECK(condition, "what"): states a rule the code relies on (a precondition, an
// invariant of a parser's state) where it is relied on, and checks it in debug builds.
// The sanitizer and fuzzing builds are debug builds, so every input the fuzzers try is
// also a test of these rules; a broken rule stops the program at once with the file, line,
// condition and explanation, which a fuzzer records as a crash.
//
// Release builds (NDEBUG) do not evaluate the condition at all, so a check may be as
// costly as it needs to be, but must not have effects the code depends on.
#pragma once

namespace velmora::support {

/// Prints the failed check to stderr and aborts.
[[noreturn]] void DCheckFailed(const char* file, int line, const char* condition,
                               const char* what) noexcept;

}  // namespace velmora::support

#ifdef NDEBUG
#define VELMORA_DCHECK(condition, what) static_cast<void>(sizeof(static_cast<bool>(condition)))
#else
#define VELMORA_DCHECK(condition, what) \
  ((condition) ? static_cast<void>(0)   \
               : ::velmora::support::DCheckFailed(__FILE__, __LINE__, #condition, (what)))
#endif
