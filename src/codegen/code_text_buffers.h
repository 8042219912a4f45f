// The seam through which code generation reads and changes source text. The generators
// never touch the IDE: whoever runs them passes buffers that answer from the editor (the
// add-in's adapter over its editor streams), from memory (tests, the command line's dry
// run) or from anything else that keeps text in buffer form (CR LF line ends).
//
// A generation reads every file it needs, computes all its insertions, then opens one
// writer per changed file before inserting anything, so a file that cannot be written
// leaves every buffer as it was.
//
// Threads: main thread only, like the editor buffers behind the add-in's adapter.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// Puts text into one buffer. Offsets refer to the text as ReadText gave it before this
/// writer was opened and must not decrease from one call to the next; the changes reach
/// the buffer when the writer is destroyed.
class TCodeTextWriter {
 public:
  virtual ~TCodeTextWriter() = default;
  virtual bool Insert(int32_t offset, const std::string& text) = 0;
};

class TCodeTextBuffers {
 public:
  virtual ~TCodeTextBuffers() = default;
  /// The whole text of `fileName` in buffer form, or nothing when it cannot be read.
  virtual std::optional<std::string> ReadText(const std::string& fileName) = 0;
  /// A writer for `fileName`, or null when it cannot be changed (nothing is changed then).
  virtual std::unique_ptr<TCodeTextWriter> OpenWriter(const std::string& fileName) = 0;
  /// Where the editor is to go after a generation: a 1-based line and the offset of its
  /// first character in the changed text.
  virtual void SetFocus(const std::string& fileName, int32_t line, int32_t offset) = 0;
};

/// Buffers held in memory: a file is read from disk (in buffer form) the first time it is
/// asked for, unless Set gave its text before. Changed files can be listed and compared
/// with what was read first.
class TMemoryCodeBuffers : public TCodeTextBuffers {
 public:
  std::optional<std::string> ReadText(const std::string& fileName) override;
  std::unique_ptr<TCodeTextWriter> OpenWriter(const std::string& fileName) override;
  void SetFocus(const std::string& fileName, int32_t line, int32_t offset) override;

  /// Gives `fileName` the text `text` (buffer form) as if it had been read.
  void Set(const std::string& fileName, std::string text);
  /// The current text, or null for a file never read or set.
  const std::string* Text(const std::string& fileName) const;
  /// The text as first read or set, or null.
  const std::string* Original(const std::string& fileName) const;
  /// The files whose text differs from what was first read, in name order.
  std::vector<std::string> ChangedFiles() const;
  /// Files named here refuse a writer (to test a generation that cannot write).
  std::vector<std::string> ReadOnly;

  std::string FocusFile;
  int32_t FocusLine = -1;
  int32_t FocusOffset = -1;

 private:
  struct TEntry {
    std::string Original;
    std::string Current;
  };
  std::map<std::string, TEntry> files_;
};

}  // namespace velmora
