#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/edition.h"

namespace cli {

enum class Verb { Show, Check, Apply, Help, Version };

/// What the command line asks for. Values are valid; options that are not given are empty.
struct Options {
  Verb verb = Verb::Help;
  std::optional<std::string> server;
  std::optional<std::string> port;  ///< plain decimal digits, without sign and leading zeros
  std::optional<std::string> language;
  bool reset = false;
  bool force = false;
  bool json = false;
};

struct ParsedOptions {
  Options options;
  std::string error;  ///< what is wrong with the command line; else empty
};

/// Reads the arguments that follow the program's own path; looks nothing up and runs nothing. Every
/// value accepted here is safe in a command line, in server.plist and in a log.
///
///     parseOptions({"apply", "--server", "mdm.example.com", "--json"}, edition)
ParsedOptions parseOptions(const std::vector<std::string> &arguments, const app::Edition &edition);

/// What `--help` prints: the three forms of the command, its options and exit statuses.
std::string usage(const app::Edition &edition);

}  // namespace cli
