#include "support/stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "support/exception.h"

namespace velmora {
namespace {

[[noreturn]] void ThrowShortRead() {
  throw EStreamError("Stream read error");
}

std::string SystemReason(const std::string& what, const std::string& path, int err) {
  return what + " \"" + path + "\": " + std::strerror(err);
}

}  // namespace

// ---- TStream ----

bool TStream::TryReadExact(void* buffer, size_t count) {
  return Read(buffer, count) == count;
}

bool TStream::TryReadU16Slow(uint16_t& value) {
  unsigned char b[2];
  if (!TryReadExact(b, 2)) return false;
  value = static_cast<uint16_t>(b[0] | (b[1] << 8));
  return true;
}

bool TStream::TryReadU32Slow(uint32_t& value) {
  unsigned char b[4];
  if (!TryReadExact(b, 4)) return false;
  value = DecodeU32(b);
  return true;
}

bool TStream::TryReadBool(bool& value) {
  uint8_t b;
  if (!TryReadU8(b)) return false;
  value = b != 0;
  return true;
}

bool TStream::TryReadStringSlow(std::string& value, uint32_t maxLength) {
  uint32_t count;
  if (!TryReadU32(count)) return false;
  if (count > maxLength || static_cast<int64_t>(count) > Remaining()) {
    Seek(Size());  // whatever follows is unreadable: leave the stream at its end
    return false;
  }
  return TryReadFixed(value, count);
}

bool TStream::TryReadFixed(std::string& value, size_t length) {
  if (static_cast<int64_t>(length) > Remaining()) {
    Seek(Size());
    return false;
  }
  if (const unsigned char* p = TakeFromBlock(length)) {
    value.assign(reinterpret_cast<const char*>(p), length);
    return true;
  }
  std::string s(length, '\0');
  if (!TryReadExact(s.data(), length)) return false;
  value = std::move(s);
  return true;
}

void TStream::ReadExact(void* buffer, size_t count) {
  if (!TryReadExact(buffer, count)) ThrowShortRead();
}
uint8_t TStream::ReadU8() {
  uint8_t v;
  if (!TryReadU8(v)) ThrowShortRead();
  return v;
}
uint16_t TStream::ReadU16() {
  uint16_t v;
  if (!TryReadU16(v)) ThrowShortRead();
  return v;
}
uint32_t TStream::ReadU32() {
  uint32_t v;
  if (!TryReadU32(v)) ThrowShortRead();
  return v;
}
int32_t TStream::ReadI32() {
  int32_t v;
  if (!TryReadI32(v)) ThrowShortRead();
  return v;
}
bool TStream::ReadBool() {
  bool v;
  if (!TryReadBool(v)) ThrowShortRead();
  return v;
}
std::string TStream::ReadString(uint32_t maxLength) {
  std::string v;
  if (!TryReadString(v, maxLength)) ThrowShortRead();
  return v;
}

void TStream::WriteU8(uint8_t value) {
  Write(&value, 1);
}
void TStream::WriteU16(uint16_t value) {
  const unsigned char b[2] = {static_cast<unsigned char>(value),
                              static_cast<unsigned char>(value >> 8)};
  Write(b, 2);
}
void TStream::WriteU32(uint32_t value) {
  const unsigned char b[4] = {
      static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
      static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
  Write(b, 4);
}
void TStream::WriteI32(int32_t value) {
  WriteU32(static_cast<uint32_t>(value));
}
void TStream::WriteString(std::string_view value) {
  WriteU32(static_cast<uint32_t>(value.size()));
  Write(value.data(), value.size());
}

// ---- TMemoryStream ----

size_t TMemoryStream::Read(void* buffer, size_t count) {
  const int64_t left = Size() - blockPosition_;
  if (left <= 0 || count == 0) return 0;
  const size_t n = std::min<size_t>(count, static_cast<size_t>(left));
  std::memcpy(buffer, data_.data() + blockPosition_, n);
  blockPosition_ += static_cast<int64_t>(n);
  return n;
}

void TMemoryStream::Write(const void* buffer, size_t count) {
  if (count == 0) return;
  const size_t end = static_cast<size_t>(blockPosition_) + count;
  if (end > data_.size()) data_.resize(end);
  std::memcpy(data_.data() + blockPosition_, buffer, count);
  blockPosition_ = static_cast<int64_t>(end);
}

void TMemoryStream::Seek(int64_t position) {
  blockPosition_ = std::clamp<int64_t>(position, 0, Size());
}

void TMemoryStream::Clear() {
  data_.clear();
  blockPosition_ = 0;
}

void TMemoryStream::LoadFromFile(const std::string& path) {
  data_ = ReadWholeFile(path);
  blockPosition_ = 0;
}

void TMemoryStream::SaveToFile(const std::string& path) const {
  WriteFileAtomically(path, data_);
}

// ---- TFileStream ----

TFileStream::TFileStream(const std::string& path, Mode mode) : path_(path) {
  const int flags = mode == Mode::Read ? O_RDONLY : (O_WRONLY | O_CREAT | O_TRUNC);
  fd_ = ::open(path.c_str(), flags | O_CLOEXEC, 0644);
  if (fd_ < 0) throw EStreamError(SystemReason("Cannot open file", path, errno));
}

TFileStream::~TFileStream() {
  if (fd_ >= 0) ::close(fd_);
}

size_t TFileStream::Read(void* buffer, size_t count) {
  size_t done = 0;
  while (done < count) {
    const ssize_t n = ::read(fd_, static_cast<char*>(buffer) + done, count - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  position_ += static_cast<int64_t>(done);
  return done;
}

void TFileStream::Write(const void* buffer, size_t count) {
  size_t done = 0;
  while (done < count) {
    const ssize_t n = ::write(fd_, static_cast<const char*>(buffer) + done, count - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0)
      throw EStreamError(SystemReason("Cannot write file", path_, n < 0 ? errno : ENOSPC));
    done += static_cast<size_t>(n);
  }
  position_ += static_cast<int64_t>(done);
}

int64_t TFileStream::Size() const {
  struct stat st;
  if (::fstat(fd_, &st) != 0) return 0;
  return st.st_size;
}

void TFileStream::Seek(int64_t position) {
  const off_t r = ::lseek(fd_, position, SEEK_SET);
  if (r >= 0) position_ = r;
}

void TFileStream::Sync() {
  if (::fsync(fd_) != 0) throw EStreamError(SystemReason("Cannot write file", path_, errno));
}

// ---- whole files ----

std::string ReadWholeFile(const std::string& path) {
  // Checked before opening: opening a pipe waits for a writer, and a device such as
  // /dev/zero never ends, so either would hang the reader instead of failing.
  struct stat st;
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    if (S_ISDIR(st.st_mode)) throw EStreamError(SystemReason("Cannot read file", path, EISDIR));
    throw EStreamError("Cannot read file \"" + path + "\": not a regular file");
  }
  TFileStream f(path, TFileStream::Mode::Read);
  std::string data;
  char buffer[1 << 16];
  for (;;) {
    const size_t n = f.Read(buffer, sizeof buffer);
    if (n == 0) break;
    data.append(buffer, n);
  }
  return data;
}

void WriteFileAtomically(const std::string& path, std::string_view data) {
  std::string temp = path + ".XXXXXX";
  const int fd = ::mkstemp(temp.data());
  if (fd < 0) throw EStreamError(SystemReason("Cannot create a temporary file for", path, errno));
  // mkstemp creates the file readable by the owner only; give it the usual permissions.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd, 0666 & ~mask);
  ::close(fd);
  try {
    {
      TFileStream out(temp, TFileStream::Mode::Create);
      out.Write(data.data(), data.size());
      out.Sync();
    }
    if (::rename(temp.c_str(), path.c_str()) != 0)
      throw EStreamError(SystemReason("Cannot replace file", path, errno));
  } catch (...) {
    ::unlink(temp.c_str());
    throw;
  }
}

}  // namespace velmora
