// The reader returns what the writer wrote into server.plist: strings without XML's special
// characters come back unchanged. With them, the reader still gives a complete record.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "agent/server_plist.h"
#include "agent/utf8.h"
#include "stored_settings.h"

namespace {

/// What a property list holds unchanged: no mark-up, no control characters. GNUstep takes U+FEFF
/// at the start of a string for a byte order mark and drops it.
bool isPlainText(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == '&' || c == '<' || c == '>') return false;
  }
  return agent::isUtf8(text) && text.find("\xEF\xBB\xBF") == std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  FuzzedDataProvider input(bytes, size);
  const std::string port = std::to_string(input.ConsumeIntegral<std::uint16_t>());
  const bool profile = input.ConsumeBool();
  const std::string language = input.ConsumeRandomLengthString(32);
  const std::string server = input.ConsumeRemainingBytesAsString();

  const settings::ServerData data = fuzz::readStoredSettings(agent::serverPlistText(
      {.server = server, .port = port, .lang = language, .profile = profile}));
  if (!isPlainText(language) || !isPlainText(server)) return 0;
  fuzz::check(data.port == port, "the port differs");
  fuzz::check(data.server == server, "the server differs");
  fuzz::check(language.empty() || data.language == language, "the language differs");
  return 0;
}
