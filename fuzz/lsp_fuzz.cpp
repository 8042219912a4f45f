// The language server's framing and dispatch on any bytes: the reader must end (every call
// consumes input or reports the end), and every request the dispatcher is given must get
// exactly one answer carrying its id, while notifications get none.
#include "fuzz_support.h"
#include "hosts/lsp/dispatcher.h"
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

  std::string body, error;
  int rounds = 0;
  for (;;) {
    const std::size_t before = pos;
    const TFrameStatus status = reader.Next(body, error);
    if (status == TFrameStatus::End) break;
    VELMORA_FUZZ_CHECK(++rounds <= static_cast<int>(size) + 1);
    (void)before;
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
