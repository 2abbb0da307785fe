// The UTF-8 check against an independent decoder, which decodes first and then checks the value.

#include "agent/utf8.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "check.h"

namespace {

bool expectUtf8(std::string_view bytes) {
  std::size_t i = 0;
  while (i < bytes.size()) {
    std::uint32_t value = static_cast<unsigned char>(bytes[i++]);
    std::size_t following = 0;
    for (std::uint32_t bit = 0x40; (value & 0x80) != 0 && (value & bit) != 0; bit >>= 1) {
      ++following;
    }
    if ((value & 0x80) != 0 && (following == 0 || following > 3)) return false;
    if (following > 0) value &= 0x3FU >> following;
    const std::size_t length = following + 1;
    for (; following > 0; --following) {
      if (i == bytes.size() || (bytes[i] & 0xC0) != 0x80) return false;
      value = value << 6 | (static_cast<unsigned char>(bytes[i++]) & 0x3FU);
    }
    const std::size_t shortest = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
    if (length != shortest || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char *>(bytes), size);
  fuzz::check(agent::isUtf8(text) == expectUtf8(text), "isUtf8");
  return 0;
}
