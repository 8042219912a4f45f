#include "support/stream.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/exception.h"

namespace velmora {
namespace {

TEST(StreamTest, LittleEndianEncodings) {
  TMemoryStream out;
  out.WriteU8(0x12);
  out.WriteU16(0x3456);
  out.WriteU32(0x789ABCDE);
  out.WriteI32(-2);
  out.WriteString("hi");
  out.WriteBool(true);
  out.WriteFixed("xy");
  out.WriteString("");
  const std::string expected(
      "\x12\x56\x34\xDE\xBC\x9A\x78\xFE\xFF\xFF\xFF\x02\0\0\0hi\x01xy\0\0\0\0", 24);
  EXPECT_EQ(out.Data(), expected);

  TMemoryStream in(expected);
  EXPECT_EQ(in.ReadU8(), 0x12);
  EXPECT_EQ(in.ReadU16(), 0x3456);
  EXPECT_EQ(in.ReadU32(), 0x789ABCDEu);
  EXPECT_EQ(in.ReadI32(), -2);
  EXPECT_EQ(in.ReadString(), "hi");
  EXPECT_TRUE(in.ReadBool());
  std::string fixed;
  EXPECT_TRUE(in.TryReadFixed(fixed, 2));
  EXPECT_EQ(fixed, "xy");
  EXPECT_EQ(in.ReadString(), "");
  EXPECT_EQ(in.Remaining(), 0);
}

TEST(StreamTest, ShortReadsFailForEveryWidth) {
  struct Case {
    const char* what;
    std::string data;
    std::function<bool(TStream&)> tryRead;
    std::function<void(TStream&)> read;
  } cases[] = {
      {"u8", "",
       [](TStream& s) {
         uint8_t v = 7;
         return s.TryReadU8(v) || v != 7;
       },
       [](TStream& s) { s.ReadU8(); }},
      {"u16", "\x01",
       [](TStream& s) {
         uint16_t v = 7;
         return s.TryReadU16(v) || v != 7;
       },
       [](TStream& s) { s.ReadU16(); }},
      {"u32", "\x01\x02\x03",
       [](TStream& s) {
         uint32_t v = 7;
         return s.TryReadU32(v) || v != 7;
       },
       [](TStream& s) { s.ReadU32(); }},
      {"i32", "\x01\x02\x03",
       [](TStream& s) {
         int32_t v = 7;
         return s.TryReadI32(v) || v != 7;
       },
       [](TStream& s) { s.ReadI32(); }},
      {"bool", "",
       [](TStream& s) {
         bool v = true;
         return s.TryReadBool(v) || !v;
       },
       [](TStream& s) { s.ReadBool(); }},
      {"string count", std::string("\x05\0\0", 3),
       [](TStream& s) {
         std::string v = "keep";
         return s.TryReadString(v) || v != "keep";
       },
       [](TStream& s) { s.ReadString(); }},
      {"string body", std::string("\x05\0\0\0abcd", 8),
       [](TStream& s) {
         std::string v = "keep";
         return s.TryReadString(v) || v != "keep";
       },
       [](TStream& s) { s.ReadString(); }},
      {"string above its maximum", std::string("\x05\0\0\0abcde", 9),
       [](TStream& s) {
         std::string v = "keep";
         return s.TryReadString(v, 4) || v != "keep";
       },
       [](TStream& s) { s.ReadString(4); }},
      // A damaged count far beyond the data must not be allocated.
      {"huge string count",
       std::string("\xFF\xFF\xFF\xFF"
                   "ab",
                   6),
       [](TStream& s) {
         std::string v;
         return s.TryReadString(v);
       },
       [](TStream& s) { s.ReadString(); }},
  };
  for (const Case& c : cases) {
    TMemoryStream a(c.data);
    EXPECT_FALSE(c.tryRead(a)) << c.what;
    TMemoryStream b(c.data);
    EXPECT_THROW(c.read(b), EStreamError) << c.what;
  }
}

TEST(StreamTest, CopiedAndMovedMemoryStreamsReadTheirOwnBlock) {
  // The typed reads go straight to the block: a copy or a moved-to stream that still
  // pointed at the source's string would read freed or foreign bytes.
  auto source = std::make_unique<TMemoryStream>(std::string("\x01\x00\x00\x00\x02\x00\x00\x00", 8));
  EXPECT_EQ(source->ReadU32(), 1u);
  TMemoryStream copy(*source);
  TMemoryStream assigned;
  assigned = *source;
  TMemoryStream moved(std::move(*source));
  source.reset();
  for (TMemoryStream* s : {&copy, &assigned, &moved}) {
    EXPECT_EQ(s->Position(), 4);
    EXPECT_EQ(s->ReadU32(), 2u);
    uint32_t past;
    EXPECT_FALSE(s->TryReadU32(past));
  }
  TMemoryStream moveAssigned;
  moveAssigned = std::move(copy);
  moveAssigned.Seek(0);
  EXPECT_EQ(moveAssigned.ReadU32(), 1u);
}

TEST(StreamTest, MemoryStreamSeekClampsAndWritesOverwrite) {
  TMemoryStream s(std::string("abcdef"));
  s.Seek(100);
  EXPECT_EQ(s.Position(), 6);
  s.Seek(-3);
  EXPECT_EQ(s.Position(), 0);
  s.Seek(4);
  s.WriteFixed("XYZ");
  EXPECT_EQ(s.Data(), "abcdXYZ");
  std::string fixed = "keep";
  s.Seek(5);
  EXPECT_FALSE(s.TryReadFixed(fixed, 3));
  EXPECT_EQ(fixed, "keep");
}

class TempDir : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/velmora-stream-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    for (const std::string& name : Entries()) {
      const std::string path = dir_ + "/" + name;
      if (::rmdir(path.c_str()) != 0) ::unlink(path.c_str());
    }
    ::rmdir(dir_.c_str());
  }
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    if (DIR* d = ::opendir(dir_.c_str())) {
      while (dirent* e = ::readdir(d))
        if (std::string(e->d_name) != "." && std::string(e->d_name) != "..")
          names.push_back(e->d_name);
      ::closedir(d);
    }
    return names;
  }
  std::string dir_;
};

TEST_F(TempDir, WriteFileAtomicallyReplacesAndLeavesNoTemporaryFile) {
  const std::string path = dir_ + "/model.cinfo";
  WriteFileAtomically(path, "old contents");
  WriteFileAtomically(path, std::string("new\0data", 8));
  EXPECT_EQ(ReadWholeFile(path), std::string("new\0data", 8));
  EXPECT_EQ(Entries(), std::vector<std::string>{"model.cinfo"});

  TMemoryStream s(std::string("saved"));
  s.SaveToFile(path);
  TMemoryStream back;
  back.LoadFromFile(path);
  EXPECT_EQ(back.Data(), "saved");
}

TEST_F(TempDir, FailedWritesRaiseAndCleanUp) {
  // A directory in the way: the rename fails, the old entry and nothing else remains.
  const std::string blocked = dir_ + "/blocked";
  ASSERT_EQ(::mkdir(blocked.c_str(), 0755), 0);
  EXPECT_THROW(WriteFileAtomically(blocked, "data"), EStreamError);
  EXPECT_EQ(Entries(), std::vector<std::string>{"blocked"});
  EXPECT_THROW(WriteFileAtomically(dir_ + "/missing/x", "data"), EStreamError);
  EXPECT_THROW(ReadWholeFile(dir_ + "/absent"), EStreamError);
  EXPECT_THROW(ReadWholeFile(blocked), EStreamError);
}

}  // namespace
}  // namespace velmora
