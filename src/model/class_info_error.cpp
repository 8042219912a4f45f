#include "model/class_info_error.h"

#include "support/stream.h"

namespace velmora {

void ThrowUnexpectedEnd() {
  throw EClassInfoFileError(kUnexpectedEndOfFile, TClassInfoErrorKind::NothingUsable);
}

namespace {

// One checked read: the stream's own reader, turned into the class information error.
template <class T, bool (TStream::*Read)(T&)>
T Checked(TStream& stream) {
  T v;
  if (!(stream.*Read)(v)) ThrowUnexpectedEnd();
  return v;
}

}  // namespace

uint8_t LoadU8(TStream& stream) {
  return Checked<uint8_t, &TStream::TryReadU8>(stream);
}
uint16_t LoadU16(TStream& stream) {
  return Checked<uint16_t, &TStream::TryReadU16>(stream);
}
uint32_t LoadU32(TStream& stream) {
  return Checked<uint32_t, &TStream::TryReadU32>(stream);
}
int32_t LoadI32(TStream& stream) {
  return Checked<int32_t, &TStream::TryReadI32>(stream);
}

bool LoadBool(TStream& stream) {
  return LoadU8(stream) != 0;
}

std::string LoadString(TStream& stream) {
  std::string v;
  if (!stream.TryReadString(v)) ThrowUnexpectedEnd();
  return v;
}

}  // namespace velmora
