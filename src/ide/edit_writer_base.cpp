#include "ide/edit_writer_base.h"

#include <utility>

namespace velmora {

bool TEditWriterBase::CopyTo(int32_t position) {
  if (!Valid(position)) return false;
  out_.append(Original(), static_cast<size_t>(position_),
              static_cast<size_t>(position - position_));
  position_ = position;
  return true;
}

bool TEditWriterBase::DeleteTo(int32_t position) {
  if (!Valid(position)) return false;
  changed_ = changed_ || position > position_;
  position_ = position;
  return true;
}

bool TEditWriterBase::Insert(const char* text) {
  if (!text) return false;
  out_ += text;
  changed_ = changed_ || *text != '\0';
  return true;
}

std::string TEditWriterBase::TakeResult() {
  out_.append(Original(), static_cast<size_t>(position_));
  return std::move(out_);
}

bool TEditWriterBase::Valid(int32_t position) const {
  return position >= position_ && static_cast<size_t>(position) <= Original().size();
}

}  // namespace velmora
