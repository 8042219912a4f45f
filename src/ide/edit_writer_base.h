// The part of an editor writer that is the same in every host: the new text is built
// aside from the original as the add-in copies, deletes and inserts, so that a generator
// that gives up half way leaves either all of its change or none. The host's writer says
// what the original is and, when released, puts the result into its buffer.
#pragma once

#include <cstdint>
#include <string>

#include "ide/editor.h"

namespace velmora {

/// Main thread only, like the editor it writes to.
class TEditWriterBase : public TIEditWriter {
 public:
  bool CopyTo(int32_t position) override;
  bool DeleteTo(int32_t position) override;
  bool Insert(const char* text) override;
  int32_t Position() override { return position_; }

 protected:
  /// The text being rewritten; the same for the writer's whole life.
  virtual const std::string& Original() const = 0;
  /// Something was deleted or inserted.
  bool Changed() const { return changed_; }
  /// The new text: what was built, then the rest of the original. Once, on release.
  std::string TakeResult();

 private:
  bool Valid(int32_t position) const;

  std::string out_;       ///< the new text up to position_
  int32_t position_ = 0;  ///< in the original text; everything before it is in out_ or dropped
  bool changed_ = false;
};

}  // namespace velmora
