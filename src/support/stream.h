// Byte streams with exact little-endian encodings: the model's files are written and read
// through these and nothing else. Reads come in two flavours: Try* returns false on a short
// read (leaving the value untouched), the plain form raises EStreamError.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

class TStream {
 public:
  virtual ~TStream() = default;

  /// Reads up to `count` bytes; returns how many were read (fewer only at the end).
  virtual size_t Read(void* buffer, size_t count) = 0;
  /// Writes all `count` bytes or raises EStreamError.
  virtual void Write(const void* buffer, size_t count) = 0;
  virtual int64_t Size() const = 0;
  virtual int64_t Position() const = 0;
  virtual void Seek(int64_t position) = 0;
  int64_t Remaining() const {
    return block_ ? static_cast<int64_t>(block_->size()) - blockPosition_ : Size() - Position();
  }

  bool TryReadExact(void* buffer, size_t count);
  bool TryReadU8(uint8_t& value) {
    if (const unsigned char* p = TakeFromBlock(1)) return value = p[0], true;
    return TryReadExact(&value, 1);
  }
  bool TryReadU16(uint16_t& value) {
    if (const unsigned char* p = TakeFromBlock(2))
      return value = static_cast<uint16_t>(p[0] | (p[1] << 8)), true;
    return TryReadU16Slow(value);
  }
  bool TryReadU32(uint32_t& value) {
    if (const unsigned char* p = TakeFromBlock(4)) return value = DecodeU32(p), true;
    return TryReadU32Slow(value);
  }
  bool TryReadI32(int32_t& value) {
    uint32_t u;
    if (!TryReadU32(u)) return false;
    value = static_cast<int32_t>(u);
    return true;
  }
  bool TryReadBool(bool& value);
  /// A u32 byte count and that many bytes. Fails, reading nothing more, when the count is
  /// above `maxLength` or above what is left in the stream, so a damaged count never
  /// makes a huge allocation.
  bool TryReadString(std::string& value,
                     uint32_t maxLength = std::numeric_limits<uint32_t>::max()) {
    // Count and bytes both in the block: one check and one copy. A saved model's strings
    // are nearly all read here.
    if (block_ != nullptr) {
      const size_t size = block_->size(), position = static_cast<size_t>(blockPosition_);
      if (position <= size && size - position >= 4) {
        const auto* p = reinterpret_cast<const unsigned char*>(block_->data()) + position;
        const uint32_t count = DecodeU32(p);
        if (count <= maxLength && size - position - 4 >= count) {
          value.assign(reinterpret_cast<const char*>(p + 4), count);
          blockPosition_ += 4 + static_cast<int64_t>(count);
          return true;
        }
      }
    }
    return TryReadStringSlow(value, maxLength);
  }
  /// Exactly `length` bytes with no count before them.
  bool TryReadFixed(std::string& value, size_t length);

  void ReadExact(void* buffer, size_t count);
  uint8_t ReadU8();
  uint16_t ReadU16();
  uint32_t ReadU32();
  int32_t ReadI32();
  bool ReadBool();
  std::string ReadString(uint32_t maxLength = std::numeric_limits<uint32_t>::max());

  void WriteU8(uint8_t value);
  void WriteU16(uint16_t value);
  void WriteU32(uint32_t value);
  void WriteI32(int32_t value);
  void WriteBool(bool value) { WriteU8(value ? 1 : 0); }
  /// u32 byte count, then the bytes.
  void WriteString(std::string_view value);
  /// The bytes alone.
  void WriteFixed(std::string_view value) { Write(value.data(), value.size()); }

 protected:
  // A stream whose bytes all lie in one block of memory lends the block here, with the
  // read position kept beside it, so the small typed reads of the model's records copy
  // straight out of it; loading a saved model is mostly such reads, and a virtual Read
  // for every field cost a fifth of the time. Other streams leave it null.
  const std::string* block_ = nullptr;
  int64_t blockPosition_ = 0;

 private:
  /// The next `count` bytes of the block, consumed; null when there is no block or fewer
  /// bytes are left (the caller then takes the ordinary path, which handles the short read).
  const unsigned char* TakeFromBlock(size_t count) {
    if (block_ == nullptr) return nullptr;
    const size_t size = block_->size(), position = static_cast<size_t>(blockPosition_);
    if (position > size || size - position < count) return nullptr;
    const auto* p = reinterpret_cast<const unsigned char*>(block_->data()) + blockPosition_;
    blockPosition_ += static_cast<int64_t>(count);
    return p;
  }
  static uint32_t DecodeU32(const unsigned char* b) {
    return uint32_t{b[0]} | (uint32_t{b[1]} << 8) | (uint32_t{b[2]} << 16) | (uint32_t{b[3]} << 24);
  }
  bool TryReadU16Slow(uint16_t& value);
  bool TryReadU32Slow(uint32_t& value);
  bool TryReadStringSlow(std::string& value, uint32_t maxLength);
};

/// A stream over a block of memory it owns.
class TMemoryStream : public TStream {
 public:
  TMemoryStream() { block_ = &data_; }
  explicit TMemoryStream(std::string data) : data_(std::move(data)) { block_ = &data_; }
  TMemoryStream(const TMemoryStream& other) : TStream(), data_(other.data_) {
    block_ = &data_;
    blockPosition_ = other.blockPosition_;
  }
  TMemoryStream& operator=(const TMemoryStream& other) {
    data_ = other.data_;
    blockPosition_ = other.blockPosition_;
    return *this;
  }
  // The block is lent by address, so a moved stream points it at its own string again.
  TMemoryStream(TMemoryStream&& other) noexcept : TStream(), data_(std::move(other.data_)) {
    block_ = &data_;
    blockPosition_ = std::exchange(other.blockPosition_, 0);
  }
  TMemoryStream& operator=(TMemoryStream&& other) noexcept {
    data_ = std::move(other.data_);
    blockPosition_ = std::exchange(other.blockPosition_, 0);
    return *this;
  }

  size_t Read(void* buffer, size_t count) override;
  void Write(const void* buffer, size_t count) override;
  int64_t Size() const override { return static_cast<int64_t>(data_.size()); }
  int64_t Position() const override { return blockPosition_; }
  void Seek(int64_t position) override;

  const char* Memory() const { return data_.data(); }
  const std::string& Data() const { return data_; }
  std::string& Data() { return data_; }
  void Clear();

  /// Replaces the contents with the whole file; raises EStreamError when it cannot be read.
  void LoadFromFile(const std::string& path);
  /// Writes the contents with WriteFileAtomically.
  void SaveToFile(const std::string& path) const;

 private:
  std::string data_;
};

/// A stream over an open file descriptor of its own.
class TFileStream : public TStream {
 public:
  enum class Mode { Read, Create };
  /// Raises EStreamError with the system's reason when the file cannot be opened.
  TFileStream(const std::string& path, Mode mode);
  ~TFileStream() override;
  TFileStream(const TFileStream&) = delete;
  TFileStream& operator=(const TFileStream&) = delete;

  size_t Read(void* buffer, size_t count) override;
  void Write(const void* buffer, size_t count) override;
  int64_t Size() const override;
  int64_t Position() const override { return position_; }
  void Seek(int64_t position) override;
  /// Flushes the file's data to the disk.
  void Sync();

 private:
  int fd_ = -1;
  int64_t position_ = 0;
  std::string path_;
};

/// Reads a whole file; raises EStreamError with the system's reason when it cannot.
std::string ReadWholeFile(const std::string& path);

/// Writes `data` to a temporary file beside `path`, flushes it to the disk and renames it
/// over `path`, so that a crash or a full disk leaves either the old file or the new one.
/// Raises EStreamError (and removes the temporary file) when any step fails.
void WriteFileAtomically(const std::string& path, std::string_view data);

}  // namespace velmora
