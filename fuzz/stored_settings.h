#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "agent/utf8.h"
#include "check.h"
#include "settings/server_data.h"

namespace fuzz {

/// Reads the bytes as server.plist, from a regular file in memory.
inline settings::ServerData readFile(std::string_view bytes) {
  const int file = ::memfd_create("fuzz", MFD_CLOEXEC);
  check(::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
        "cannot write a memory file");
  settings::ServerData data = settings::readServerData("/proc/self/fd/" + std::to_string(file));
  ::close(file);
  return data;
}

/// Reads the bytes as server.plist and checks what must be true of every record.
inline settings::ServerData readStoredSettings(std::string_view bytes) {
  settings::ServerData data = readFile(bytes);
  check(!data.language.empty(), "no language");
  std::string_view digits = data.port;
  if (digits.starts_with('-')) digits.remove_prefix(1);
  check(consistsOf(digits, kDigits), "the port is not an integer");
  check(digits == "0" || !digits.starts_with('0'), "the port has leading zeros");
  for (const std::string_view text : {data.language, data.server}) {
    check(agent::isUtf8(text), "a string is not UTF-8");
  }
  return data;
}

}  // namespace fuzz
