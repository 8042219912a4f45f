// The language server's framing, dispatch and position conversion on any bytes: the
// reader must end (every call consumes input or reports the end), every request the
// dispatcher is given gets exactly one answer carrying its id, notifications none.
#include "fuzz_support.h"
#include "hosts/lsp/dispatcher.h"
#include "hosts/lsp/positions.h"
#include "hosts/lsp/transport.h"

using namespace velmora;
using namespace velmora::lsp;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input = fuzz::AsText(data, size);
  std::size_t pos = 0;
  // Small pieces and a small body limit reach the reader's refill and skip paths.
  TFrameReader reader(
      [&](char* buffer, std::size_t room) {
        const std::size_t n = std::min({room, std::size_t{7}, input.size() - pos});
        input.copy(buffer, n, pos);
        pos += n;
        return n;
      },
      4096);

  TDispatcher dispatcher;
  dispatcher.OnRequest("echo", [](const json& params) { return params; });
  dispatcher.OnRequest("uri", [](const json& params) {
    return json(params.at("textDocument").at("uri").get<std::string>());
  });
  dispatcher.OnNotification("$/cancelRequest",
                            [&](const json& params) { dispatcher.Cancel(params.at("id")); });

  // The same bytes as a document: every offset maps to a position that maps back to an
  // offset on the same line, never past the text.
  const TLineIndex index(input);
  for (std::size_t offset = 0; offset <= input.size(); offset += 1 + input.size() / 64) {
    const TLspPosition p = index.ToLsp(static_cast<int64_t>(offset), TPositionEncoding::Utf16);
    const int64_t back = index.FromLsp(p, TPositionEncoding::Utf16);
    VELMORA_FUZZ_CHECK(back >= 0 && back <= static_cast<int64_t>(input.size()));
    VELMORA_FUZZ_CHECK(index.LineOf(back) == p.Line);
  }
  (void)PathFromUri(input);

  std::string body, error;
  int rounds = 0;
  for (;;) {
    const TFrameStatus status = reader.Next(body, error);
    if (status == TFrameStatus::End) break;
    VELMORA_FUZZ_CHECK(++rounds <= static_cast<int>(size) + 1);
    if (status != TFrameStatus::Message) continue;
    const json message = json::parse(body, nullptr, false);
    const std::optional<json> answer = dispatcher.Handle(body);
    const bool isRequest = !message.is_discarded() && message.is_object() &&
                           message.contains("method") && message.contains("id");
    if (isRequest && message["method"].is_string() &&
        (message["id"].is_string() || message["id"].is_number_integer())) {
      VELMORA_FUZZ_CHECK(answer && answer->at("id") == message["id"]);
    }
    if (answer) VELMORA_FUZZ_CHECK(answer->contains("result") != answer->contains("error"));
  }
  return 0;
}
