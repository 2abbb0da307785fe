// The option parser with any command line: whatever it accepts is harmless in a command line, in
// the file and in the system log, and its report is one line of ASCII.

#include "cli/options.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/edition.h"
#include "check.h"
#include "cli/report.h"
#include "i18n/language.h"

namespace {

/// The arguments are separated by newlines.
std::vector<std::string> argumentsIn(std::string_view text) {
  std::vector<std::string> arguments;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return arguments;
}

bool isHarmlessServer(const std::string &server) {
  return fuzz::consistsOf(server,
                          "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-:") &&
         server.front() != '-';
}

bool isPlainPort(const std::string &port) {
  return fuzz::consistsOf(port, fuzz::kDigits) && port.size() <= 5 && std::stoi(port) <= 65535 &&
         (port == "0" || port.front() != '0');
}

bool offers(const app::Edition &edition, const std::string &code) {
  return std::any_of(
      edition.languages.begin(), edition.languages.end(),
      [&](i18n::Language offered) { return i18n::getLanguageType(offered) == code; });
}

void checkAccepted(const cli::Options &options, const app::Edition &edition) {
  const bool acts = options.verb == cli::Verb::Apply;
  const bool compares = acts || options.verb == cli::Verb::Check;
  fuzz::check(options.server.has_value() == compares, "an unneeded server, or a missing one");
  fuzz::check(!options.server || isHarmlessServer(*options.server), "server");
  fuzz::check(!options.port || (compares && isPlainPort(*options.port)), "port");
  fuzz::check(!options.language || (compares && offers(edition, *options.language)), "language");
  fuzz::check(acts || (!options.reset && !options.force), "--reset or --force without apply");
}

void checkReport(const std::string &problem, const cli::Options &options) {
  cli::Report report;
  report.problems.push_back(problem);
  report.wanted = {.server = options.server.value_or(problem),
                   .port = options.port.value_or(problem),
                   .language = options.language.value_or(problem)};
  const std::string json = cli::jsonReport(report);
  fuzz::check(json.find('\n') == json.size() - 1, "more than one line");
  fuzz::check(
      std::all_of(json.begin(), json.end() - 1, [](char c) { return c >= ' ' && c < 0x7F; }),
      "not printable");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(bytes), size);
  const std::vector<std::string> arguments = argumentsIn(text);
  checkReport(text, cli::parseOptions(arguments, app::kEditions.front()).options);
  for (const app::Edition &edition : app::kEditions) {
    const cli::ParsedOptions parsed = cli::parseOptions(arguments, edition);
    if (parsed.error.empty()) checkAccepted(parsed.options, edition);
    fuzz::check(parsed.error.find('\n') == std::string::npos, "an error of more than one line");
  }
  return 0;
}
