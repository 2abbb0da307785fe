#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "app/build_edition.h"
#include "app/diagnostics.h"
#include "cli/commands.h"
#include "cli/process.h"

namespace {

std::string version(const app::Edition &edition) {
  return "configure-agent " PRODUCT_VERSION " (" + std::string(edition.oem) + ")\n";
}

cli::Result run(const cli::ParsedOptions &parsed, const app::Edition &edition) {
  if (!parsed.error.empty()) return cli::refusal(cli::kUsage, parsed.error + "; see --help");
  // The real user, too: with the set-user-ID bit anybody could call it as root.
  if (::getuid() != 0 || ::geteuid() != 0) {
    return cli::refusal(cli::kNoPermission, "must be run as root");
  }
  cli::useSystemCommands();
  if (parsed.options.verb == cli::Verb::Apply && !cli::enterOwnSession()) {
    return cli::refusal(cli::kNotAsRequested,
                        "nothing was changed: unable to start a session of its own");
  }
  return cli::carryOut(parsed.options, edition);
}

/// Only the result goes to standard output. Without one, the reason goes out as a message.
void print(const cli::Result &result, bool asJson, int output) {
  const cli::Report &report = result.report;
  const bool isRefusal = !report.before;
  if (isRefusal) {
    for (const std::string &problem : report.problems) {
      app::printLine("configure-agent: " + problem);
    }
  }
  if (asJson) {
    cli::writeTo(output, jsonReport(report));
  } else if (!isRefusal) {
    cli::writeTo(output, textReport(report));
  }
}

}  // namespace

int main(int argc, char *argv[]) {
  app::ignoreBrokenPipes();
  const int output = cli::separateResultFromMessages();
  const app::Edition &edition = app::buildEdition();
  const cli::ParsedOptions parsed =
      cli::parseOptions(std::vector<std::string>(argv + (argc > 0), argv + argc), edition);
  const cli::Verb verb = parsed.options.verb;
  if (parsed.error.empty() && (verb == cli::Verb::Help || verb == cli::Verb::Version)) {
    cli::writeTo(output, verb == cli::Verb::Help ? cli::usage(edition) : version(edition));
    return cli::kAsRequested;
  }
  const cli::Result result = run(parsed, edition);
  print(result, parsed.options.json, output);
  return result.status;
}
