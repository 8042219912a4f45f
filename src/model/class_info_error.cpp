#include "model/class_info_error.h"

#include "support/stream.h"

namespace velmora {

void ThrowUnexpectedEnd() {
  throw EClassInfoFileError(kUnexpectedEndOfFile, 0);
}

uint8_t LoadU8(TStream& stream) {
  uint8_t v;
  if (!stream.TryReadU8(v)) ThrowUnexpectedEnd();
  return v;
}

uint16_t LoadU16(TStream& stream) {
  uint16_t v;
  if (!stream.TryReadU16(v)) ThrowUnexpectedEnd();
  return v;
}

uint32_t LoadU32(TStream& stream) {
  uint32_t v;
  if (!stream.TryReadU32(v)) ThrowUnexpectedEnd();
  return v;
}

int32_t LoadI32(TStream& stream) {
  int32_t v;
  if (!stream.TryReadI32(v)) ThrowUnexpectedEnd();
  return v;
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
