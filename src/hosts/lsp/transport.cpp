#include "hosts/lsp/transport.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>

#include "support/ansi.h"

namespace velmora::lsp {
namespace {

constexpr std::size_t kReadChunk = 64 * 1024;

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (AnsiUpperChar(a[i]) != AnsiUpperChar(b[i])) return false;
  return true;
}

}  // namespace

TFrameReader::TFrameReader(TReadFunc read, std::size_t maxBody)
    : read_(std::move(read)), maxBody_(maxBody) {}

bool TFrameReader::Fill() {
  if (ended_) return false;
  // Drop what was consumed before growing: the buffer holds at most one chunk beyond the
  // unread part.
  if (pos_ > 0) {
    buffer_.erase(0, pos_);
    pos_ = 0;
  }
  const std::size_t old = buffer_.size();
  buffer_.resize(old + kReadChunk);
  const std::size_t got = read_(buffer_.data() + old, kReadChunk);
  buffer_.resize(old + got);
  if (got == 0) ended_ = true;
  return got > 0;
}

bool TFrameReader::ReadLine(std::string& line, bool& tooLong) {
  line.clear();
  tooLong = false;
  for (;;) {
    const std::size_t nl = buffer_.find('\n', pos_);
    const std::size_t end = nl == std::string::npos ? buffer_.size() : nl;
    const std::size_t room = kMaxHeaderLine - std::min(line.size(), kMaxHeaderLine);
    const std::size_t take = std::min(end - pos_, room);
    line.append(buffer_, pos_, take);
    if (end - pos_ > take) tooLong = true;
    if (nl != std::string::npos) {
      pos_ = nl + 1;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      return true;
    }
    pos_ = buffer_.size();
    if (!Fill()) return !line.empty();
  }
}

bool TFrameReader::ReadBody(std::size_t size, std::string* body) {
  if (body) {
    body->clear();
    body->reserve(std::min(size, maxBody_));
  }
  while (size > 0) {
    if (pos_ == buffer_.size() && !Fill()) return false;
    const std::size_t take = std::min(size, buffer_.size() - pos_);
    if (body) body->append(buffer_, pos_, take);
    pos_ += take;
    size -= take;
  }
  return true;
}

TFrameStatus TFrameReader::Next(std::string& body, std::string& error) {
  error.clear();
  std::string line;
  bool tooLong = false;
  bool sawHeader = false;
  bool haveLength = false;
  std::size_t length = 0;
  // Header lines up to the empty line. Blank lines before any header are passed over:
  // some clients end a body with a stray line end.
  for (;;) {
    if (!ReadLine(line, tooLong)) return TFrameStatus::End;
    if (line.empty() && !tooLong) {
      if (sawHeader) break;
      continue;
    }
    sawHeader = true;
    if (tooLong) {
      error = "header line too long";
      continue;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) {
      error = "header line without ':'";
      continue;
    }
    const std::string_view name = Trim(std::string_view(line).substr(0, colon));
    const std::string_view value = Trim(std::string_view(line).substr(colon + 1));
    if (!SameName(name, "Content-Length")) continue;  // Content-Type and the like
    std::size_t n = 0;
    const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), n);
    if (ec != std::errc() || end != value.data() + value.size()) {
      error = "Content-Length is not a number: " + std::string(value.substr(0, 40));
      continue;
    }
    haveLength = true;
    length = n;
  }
  if (!haveLength) {
    if (error.empty()) error = "header without Content-Length";
    return TFrameStatus::BadHeader;
  }
  if (length > maxBody_) {
    if (!ReadBody(length, nullptr)) return TFrameStatus::End;
    error = "message of " + std::to_string(length) + " bytes is too large";
    return TFrameStatus::BadHeader;
  }
  if (!ReadBody(length, &body)) return TFrameStatus::End;
  // A damaged header line beside a good Content-Length still gives the message.
  error.clear();
  return TFrameStatus::Message;
}

std::string Frame(std::string_view body) {
  std::string out = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  out.append(body);
  return out;
}

bool TFrameWriter::Send(std::string_view body) {
  const std::string framed = Frame(body);
  std::lock_guard<std::mutex> hold(lock_);
  if (broken_) return false;
  if (!write_(framed)) broken_ = true;
  return !broken_;
}

TFrameReader::TReadFunc ReadFromFd(int fd) {
  return [fd](char* buffer, std::size_t size) -> std::size_t {
    for (;;) {
      const ssize_t n = ::read(fd, buffer, size);
      if (n >= 0) return static_cast<std::size_t>(n);
      if (errno != EINTR) return 0;
    }
  };
}

TFrameWriter::TWriteFunc WriteToFd(int fd) {
  return [fd](std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t n = ::write(fd, bytes.data(), bytes.size());
      if (n < 0) {
        if (errno == EINTR) continue;
        return false;
      }
      bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
  };
}

}  // namespace velmora::lsp
