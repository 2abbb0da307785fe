#include "cli/options.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "i18n/edition_languages.h"
#include "i18n/language.h"
#include "settings/validation.h"

namespace cli {
namespace {

constexpr std::size_t kLongestHostName = 255;

bool isHostName(std::string_view text) {
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  return !text.empty() && text.size() <= kLongestHostName && !text.starts_with('-') &&
         text.find_first_not_of(kAllowed) == std::string_view::npos;
}

/// The address test reads up to the first NUL only, so a NUL is refused first.
bool isServer(const app::Edition &, const std::string &text) {
  if (text.find('\0') != std::string::npos) return false;
  return settings::isIPv6(text) || settings::isIPv4(text) || isHostName(text);
}

bool isPort(const app::Edition &, const std::string &text) { return settings::isPort(text); }

bool isOffered(const app::Edition &edition, const std::string &code) {
  return i18n::getLanguageType(i18n::choiceForCode(edition, code).lang) == code;
}

/// A command, and every option that it takes.
struct Command {
  std::string_view name;
  Verb verb;
  std::string_view options;  ///< each with a space on both sides
};

constexpr std::array<Command, 6> kCommands{{
    {"show", Verb::Show, " --json "},
    {"check", Verb::Check, " --server --port --language --json "},
    {"apply", Verb::Apply, " --server --port --language --reset --force --json "},
    {"--help", Verb::Help, ""},
    {"-h", Verb::Help, ""},
    {"--version", Verb::Version, ""},
}};

bool takes(const Command &command, const std::string &option) {
  return option.find(' ') == std::string::npos &&
         command.options.find(" " + option + " ") != std::string_view::npos;
}

/// An option that takes a value.
struct ValueOption {
  std::string_view name;
  std::optional<std::string> Options::*value;
  bool (*isValid)(const app::Edition &, const std::string &);
  std::string_view wanted;
};

constexpr std::array<ValueOption, 3> kValueOptions{{
    {"--server", &Options::server, isServer, "an IP address or a host name"},
    {"--port", &Options::port, isPort, "a number from 0 to 65535"},
    {"--language", &Options::language, isOffered, "a language that this edition offers"},
}};

/// An option that is on when it is present.
struct Flag {
  std::string_view name;
  bool Options::*value;
};

constexpr std::array<Flag, 3> kFlags{{
    {"--reset", &Options::reset},
    {"--force", &Options::force},
    {"--json", &Options::json},
}};

/// The row of that name, or null.
template <class Row, std::size_t Count>
const Row *rowFor(const std::array<Row, Count> &table, const std::string &name) {
  for (const Row &row : table) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

/// Drops what a valid port may have beyond its digits: a sign and leading zeros.
std::string plainDecimal(const std::string &port) {
  const std::size_t first = port.find_first_not_of("+-0");
  return first == std::string::npos ? "0" : port.substr(first);
}

/// Reads the options after the verb, one at a time, up to the first error.
class Reader {
 public:
  Reader(const std::vector<std::string> &arguments, const Command &command,
         const app::Edition &edition, Options &options)
      : arguments_(arguments), command_(command), edition_(edition), options_(options) {}

  /// Returns what is wrong; empty when nothing is.
  std::string read() {
    std::string error;
    while (error.empty() && next_ < arguments_.size()) error = readOption();
    return error;
  }

 private:
  // No message repeats an argument: what an engine passes by mistake may be a secret.
  std::string readOption() {
    const std::string &name = arguments_[next_++];
    if (!takes(command_, name)) {
      return "argument " + std::to_string(next_) + " is not an option of " +
             std::string(command_.name);
    }
    const Flag *flag = rowFor(kFlags, name);
    return flag == nullptr ? readValue(*rowFor(kValueOptions, name)) : readFlag(*flag);
  }

  std::string readFlag(const Flag &flag) {
    const bool given = std::exchange(options_.*flag.value, true);
    return given ? std::string(flag.name) + " is given twice" : "";
  }

  std::string readValue(const ValueOption &option) {
    const std::string name(option.name);
    std::optional<std::string> &value = options_.*option.value;
    if (value) return name + " is given twice";
    if (next_ == arguments_.size()) return name + " needs a value";
    const std::string &text = arguments_[next_++];
    if (!option.isValid(edition_, text)) return name + " needs " + std::string(option.wanted);
    value = text;
    return "";
  }

  const std::vector<std::string> &arguments_;
  const Command &command_;
  const app::Edition &edition_;
  Options &options_;
  std::size_t next_ = 1;
};

bool needsServer(const Options &options) {
  return options.verb == Verb::Check || options.verb == Verb::Apply;
}

}  // namespace

ParsedOptions parseOptions(const std::vector<std::string> &arguments, const app::Edition &edition) {
  ParsedOptions parsed;
  Options &options = parsed.options;
  const Command *command = arguments.empty() ? nullptr : rowFor(kCommands, arguments.front());
  if (command == nullptr) {
    parsed.error = "the first argument must be show, check or apply";
  } else {
    options.verb = command->verb;
    parsed.error = Reader(arguments, *command, edition, options).read();
  }
  if (parsed.error.empty() && needsServer(options) && !options.server) {
    parsed.error = "--server is required";
  }
  if (options.port) options.port = plainDecimal(*options.port);
  // An engine that asked for JSON also gets it for an invalid command line.
  options.json = std::ranges::find(arguments, "--json") != arguments.end();
  return parsed;
}

std::string usage(const app::Edition &edition) {
  std::string languages;
  for (const i18n::Language language : edition.languages) {
    languages += ' ' + i18n::getLanguageType(language);
  }
  return "usage: configure-agent show  [--json]\n"
         "       configure-agent check --server HOST [--port N] [--language CODE] [--json]\n"
         "       configure-agent apply --server HOST [--port N] [--language CODE]\n"
         "                             [--reset] [--force] [--json]\n"
         "       configure-agent --help | --version\n"
         "\n"
         "Points this Mac's " +
         std::string(edition.oem) +
         " agent at its management server. Must be run as root.\n"
         "\n"
         "  show             report the current settings and jobs\n"
         "  check            report whether everything is as requested; changes nothing\n"
         "  apply            apply the settings, unless everything is as requested\n"
         "\n"
         "  --server HOST    IPv4 or IPv6 address, or host name\n"
         "  --port N         0 to 65535; default: the stored port, else 6000\n"
         "  --language CODE  one of:" +
         languages +
         "; default: the stored language\n"
         "  --reset          when applying, also regenerate the agent's own settings\n"
         "  --force          apply even if everything is as requested\n"
         "  --json           report one line of JSON\n"
         "\n"
         "Exit status: 0 as requested; 1 not as requested (check), or applied but not\n"
         "effective (apply); 64 invalid command line or value; 69 the agent is not\n"
         "installed; 75 another run is in progress; 77 not root.\n";
}

}  // namespace cli
