// The reader of server.plist: any bytes give a complete record, the same on every read.

#include <cstddef>
#include <cstdint>

#include "stored_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string_view content(reinterpret_cast<const char *>(bytes), size);
  const settings::ServerData data = fuzz::readStoredSettings(content);
  fuzz::check(fuzz::readStoredSettings(content) == data, "the second read differs");
  return 0;
}
