// The threaded parse driver: what an editing client's burst of changes turns into.
#include "hosts/lsp/parse_driver.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velmora::lsp {
namespace {

using namespace std::chrono_literals;

struct Delivered {
  std::mutex lock;
  std::vector<TParsedFile> files;
  TParseDriver::TDeliver Sink() {
    return [this](TParsedFile parsed) {
      std::lock_guard<std::mutex> hold(lock);
      files.push_back(std::move(parsed));
    };
  }
};

std::string ClassesOf(const TParsedFile& parsed) {
  std::string names;
  if (!parsed.Classes) return "<none>";
  for (int i = 0; i < parsed.Classes->Count(); ++i) names += parsed.Classes->Items(i)->Name + " ";
  return names;
}

TEST(LspParseDriver, ABurstOfChangesIsParsedOnceWithTheLastText) {
  Delivered delivered;
  TThreadParseDriver driver(delivered.Sink());
  for (int version = 1; version <= 3; ++version)
    driver.Parse("/p/Unit1.pas",
                 "unit Unit1;\ninterface\ntype TV" + std::to_string(version) +
                     " = class end;\nimplementation\nend.\n",
                 static_cast<uint64_t>(version), 50ms);
  driver.Parse("/p/Unit2.pas", "unit Unit2;\ninterface\ntype TOther = class end;\n", 9, 0ms);
  driver.WaitIdle();
  std::lock_guard<std::mutex> hold(delivered.lock);
  ASSERT_EQ(delivered.files.size(), 2u);
  // The one without delay goes first; the burst comes as its last request.
  EXPECT_EQ(delivered.files[0].Path, "/p/Unit2.pas");
  EXPECT_EQ(delivered.files[1].Generation, 3u);
  EXPECT_EQ(ClassesOf(delivered.files[1]), "TV3 ");
  EXPECT_EQ(delivered.files[1].LineStarts.size(), 6u);  // five lines and the empty last
}

TEST(LspParseDriver, AFileThatCannotBeReadSaysWhy) {
  Delivered delivered;
  TThreadParseDriver driver(delivered.Sink());
  driver.Parse("/no/such/dir/Unit9.pas", std::nullopt, 1, 0ms);
  driver.WaitIdle();
  std::lock_guard<std::mutex> hold(delivered.lock);
  ASSERT_EQ(delivered.files.size(), 1u);
  EXPECT_FALSE(delivered.files[0].Ok);
  EXPECT_NE(delivered.files[0].Error, "");
}

TEST(LspParseDriver, CancelledRequestsAreNotParsedAndTheDriverStopsAtOnce) {
  Delivered delivered;
  {
    TThreadParseDriver driver(delivered.Sink());
    driver.Parse("/p/A.pas", "unit A;", 1, 10s);
    driver.CancelPending();
    driver.WaitIdle();
    driver.Parse("/p/B.pas", "unit B;", 2, 10s);
    // Destroyed with a request ten seconds away: it is dropped, not waited for. The pause
    // only lets the worker reach its wait for that request, so that the sanitizer builds
    // see the driver stop under a waiting worker; nothing here depends on its length.
    std::this_thread::sleep_for(20ms);
  }
  EXPECT_TRUE(delivered.files.empty());
}

}  // namespace
}  // namespace velmora::lsp
