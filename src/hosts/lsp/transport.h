// The language server's transport: messages framed by a Content-Length header, as the
// Language Server Protocol sends them over standard input and output. This file only
// frames; what a message means is the dispatcher's business.
//
// Threads: a TFrameReader belongs to the one thread that reads the client. TFrameWriter
// may be called from any thread; it writes each message whole under its own lock.
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace velmora::lsp {

/// Bodies above this size are refused without reading them into memory: no client sends a
/// message this large, and a wrong header must not make the server allocate gigabytes.
inline constexpr std::size_t kMaxBodySize = 256u << 20;
/// A header line longer than this is damaged; it is passed over up to its line end.
inline constexpr std::size_t kMaxHeaderLine = 8192;

enum class TFrameStatus {
  Message,    ///< a whole body was read
  BadHeader,  ///< the header was damaged; its body (if any) was skipped, reading goes on
  End,        ///< the input ended (a part message at the end is dropped)
};

/// Reads framed messages from a byte source. `read` fills up to `size` bytes and returns
/// how many it gave, 0 at the end of the input.
class TFrameReader {
 public:
  using TReadFunc = std::function<std::size_t(char* buffer, std::size_t size)>;
  /// Bodies larger than `maxBody` are passed over with BadHeader.
  explicit TFrameReader(TReadFunc read, std::size_t maxBody = kMaxBodySize);

  /// The next message: on Message `body` holds it; on BadHeader `error` says what was
  /// wrong with the header.
  TFrameStatus Next(std::string& body, std::string& error);

 private:
  bool Fill();
  /// One header line without its line end; false at the end of the input. A line over
  /// kMaxHeaderLine comes back cut, with `tooLong` set.
  bool ReadLine(std::string& line, bool& tooLong);
  /// Reads `size` bytes into `body`, or passes them over when `body` is null.
  bool ReadBody(std::size_t size, std::string* body);

  TReadFunc read_;
  std::size_t maxBody_;
  std::string buffer_;
  std::size_t pos_ = 0;
  bool ended_ = false;
};

/// `body` with its header, ready to send.
std::string Frame(std::string_view body);

/// Writes framed messages through `write` (which must write everything it is given and
/// return false when the output is gone).
class TFrameWriter {
 public:
  using TWriteFunc = std::function<bool(std::string_view bytes)>;
  explicit TFrameWriter(TWriteFunc write) : write_(std::move(write)) {}

  /// False once the output has gone away; later messages are dropped.
  bool Send(std::string_view body);

 private:
  std::mutex lock_;
  TWriteFunc write_;
  bool broken_ = false;
};

/// A read function over a file descriptor (retries on EINTR; 0 at end or error).
TFrameReader::TReadFunc ReadFromFd(int fd);
/// A write function over a file descriptor (writes everything; false on error).
TFrameWriter::TWriteFunc WriteToFd(int fd);

}  // namespace velmora::lsp
