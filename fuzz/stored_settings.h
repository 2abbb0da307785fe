#pragma once

#include <string_view>

#include "agent/utf8.h"
#include "check.h"
#include "memory_file.h"
#include "settings/server_data.h"

namespace fuzz {

/// Reads the bytes as server.plist and checks what must be true of every record.
inline settings::ServerData readStoredSettings(std::string_view bytes) {
  settings::ServerData data = settings::readServerData(MemoryFile(bytes).path());
  check(!data.language.empty(), "no language");
  std::string_view digits = data.port;
  if (digits.starts_with('-')) digits.remove_prefix(1);
  check(!digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos,
        "the port is not an integer");
  check(digits == "0" || !digits.starts_with('0'), "the port has leading zeros");
  for (const std::string_view text : {data.language, data.server}) {
    check(agent::isUtf8(text), "a string is not UTF-8");
  }
  return data;
}

}  // namespace fuzz
