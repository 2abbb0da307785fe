#include "cli/sequence.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <string_view>
#include <system_error>

#include "agent/installation.h"
#include "agent/settings_reset.h"
#include "cli/process.h"
#include "cli/settings_owner.h"
#include "settings/apply_workflow.h"

namespace cli {
namespace {

using Problems = std::vector<std::string>;

settings::ApplyRequest applyRequest(const SequenceRequest &request) {
  const bool nobody = request.console.user.user.empty();
  return {.oem = std::string(request.edition.oem),
          .server = request.wanted.server,
          .port = request.wanted.port,
          .language = request.wanted.language,
          .profile = request.wanted.profile,
          .reset_settings = request.reset,
          .administrator = rootAccount(),
          .consoleUser = nobody ? std::nullopt : std::optional(request.console.user),
          .nobodyAtConsole = nobody};
}

settings::ApplyOutcome apply(const SequenceRequest &request, Problems &problems) {
  const MessageBuffer messages;
  if (!request.reset) return settings::applySettings(applyRequest(request));
  const SettingsOwner owner(agent::settingsFile(request.edition.oem, agent::kDaemonSettings));
  const settings::ApplyOutcome outcome = settings::applySettings(applyRequest(request));
  if (const std::error_code error = owner.restore()) {
    problems.push_back("the daemon's settings file cannot be given back to its owner: " +
                       error.message());
  }
  return outcome;
}

/// Failures that the state of the jobs does not show.
void addHiddenFailures(const settings::ApplyOutcome &outcome, const State &after,
                       Problems &problems) {
  if (outcome.write) {
    problems.push_back("server.plist cannot be written: " + outcome.write.message());
  }
  if (after.daemonLoaded && !outcome.daemonStarted) {
    problems.emplace_back("the daemon's job did not stop, so it runs with its old settings");
  }
  if (after.agentLoaded == true && !outcome.agentStarted) {
    problems.push_back("the per-user job of " + after.consoleUser +
                       " did not stop, so it runs with its old settings");
  }
}

void addResetFailures(std::string_view oem, Problems &problems) {
  for (const std::string_view name : settings::kSettingsFilesToDelete) {
    const std::string file = agent::settingsFile(oem, name);
    if (::access(file.c_str(), F_OK) == 0) problems.push_back(file + " was not deleted");
  }
  const std::string file = agent::settingsFile(oem, agent::kDaemonSettings);
  struct stat info;
  if (::stat(file.c_str(), &info) != 0 || info.st_size == 0) {
    problems.push_back(file + " was not regenerated");
  }
}

}  // namespace

SequenceResult runSequence(const SequenceRequest &request) {
  ignoreInterruptions();
  Problems failures;
  const settings::ApplyOutcome outcome = apply(request, failures);
  SequenceResult result{.after = observe(request.console), .problems = {}};
  result.problems = differences(result.after, request.wanted);
  addHiddenFailures(outcome, result.after, failures);
  if (request.reset) addResetFailures(request.edition.oem, failures);
  result.problems.insert(result.problems.end(), failures.begin(), failures.end());
  return result;
}

}  // namespace cli
