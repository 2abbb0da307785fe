#include "cli/commands.h"

#include <syslog.h>
#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string>

#include "agent/installation.h"
#include "agent/mdm_profile.h"
#include "cli/observation.h"
#include "cli/run_lock.h"
#include "cli/sequence.h"
#include "i18n/edition_languages.h"
#include "settings/server_data.h"
#include "settings/validation.h"

namespace cli {
namespace {

constexpr double kSecondsForLeftoverCommands = 5;

/// The requested settings except for the profile flag. Options that are not given take the values
/// that the settings window would show.
WantedSettings wantedSettings(const Options &options, const app::Edition &edition) {
  const std::optional<settings::ServerData> shown = settings::getServerData();
  const i18n::Language language =
      i18n::choiceForCode(edition, shown ? shown->language : std::string()).lang;
  const std::string port = shown ? shown->port : std::string(settings::kDefaultPort);
  return {.server = options.server.value_or(""),
          .port = options.port.value_or(port),
          .language = options.language.value_or(i18n::getLanguageType(language)),
          .profile = false};
}

/// One run of the tool. What it finds out goes into its report.
struct Run {
  const Options &options;
  const app::Edition &edition;
  Console console;
  Result result;

  /// Fills in the present and the requested state. Runs the profile check and the look-ups.
  void inspect(WantedSettings wanted, bool unfinished) {
    wanted.profile = agent::checkMDMProfile(edition.oem, rootAccount());
    result.report.wanted = wanted;
    console = findConsole();
    result.report.before = observe(console);
    result.report.before->unfinished = unfinished;
  }
};

Result show() {
  Result result;
  State state = observe(findConsole());
  state.unfinished = readMark(kRunFolder).has_value();
  result.report.before = result.report.after = state;
  return result;
}

Result check(Run run, const WantedSettings &wanted) {
  run.inspect(wanted, readMark(kRunFolder).has_value());
  Report &report = run.result.report;
  report.after = asRequested(*report.before, *report.wanted);
  report.problems = differences(*report.before, *report.wanted);
  report.changed = !report.problems.empty();
  if (report.changed) run.result.status = kNotAsRequested;
  return run.result;
}

/// The values are valid, so none of them can forge a second line.
void writeSystemLog(const WantedSettings &wanted, bool reset, bool isEffective) {
  ::openlog("configure-agent", LOG_PID, LOG_AUTH);
  ::syslog(LOG_NOTICE, "applied server=%s port=%s language=%s profile=%s reset=%s: %s",
           wanted.server.c_str(), wanted.port.c_str(), wanted.language.c_str(),
           wanted.profile ? "yes" : "no", reset ? "yes" : "no",
           isEffective ? "effective" : "not effective");
  ::closelog();
}

/// Runs the sequence with the mark set. The mark stays if anything is not as requested afterwards.
void makeChanges(Run &run, const RunLock &lock, bool reset) {
  Report &report = run.result.report;
  if (const std::error_code error = lock.setMark({.processGroup = ::getpgrp(), .reset = reset})) {
    report.problems.push_back("nothing was changed: the run cannot be marked as unfinished: " +
                              error.message());
    return;
  }
  report.changed = true;
  SequenceResult result = runSequence(
      {.edition = run.edition, .wanted = *report.wanted, .console = run.console, .reset = reset});
  report.after = result.after;
  report.problems = result.problems;
  if (report.problems.empty()) {
    if (const std::error_code error = lock.clearMark()) {
      report.problems.push_back("the mark of this run cannot be cleared: " + error.message());
    }
  }
  report.after->unfinished = !report.problems.empty();
  writeSystemLog(*report.wanted, reset, report.problems.empty());
}

Result applyUnderLock(Run run, const WantedSettings &wanted, const RunLock &lock) {
  const std::optional<UnfinishedMark> left = lock.mark();
  if (left) waitForProcessGroup(left->processGroup, kSecondsForLeftoverCommands);
  run.inspect(wanted, left.has_value());
  Report &report = run.result.report;
  if (!run.options.force && differences(*report.before, *report.wanted).empty()) {
    report.after = report.before;
    return run.result;
  }
  // A reset that was interrupted is repeated: the daemon's settings may be empty.
  makeChanges(run, lock, run.options.reset || (left && left->reset));
  if (!report.problems.empty()) run.result.status = kNotAsRequested;
  return run.result;
}

Result apply(const Run &run, const WantedSettings &wanted) {
  const RunLock lock(kRunFolder);
  if (lock.isBusy()) return refusal(kTemporary, "another run is in progress");
  if (lock.error()) {
    return refusal(kNotAsRequested,
                   std::string("nothing was changed: unable to take the lock in ") + kRunFolder +
                       ": " + lock.error().message());
  }
  return applyUnderLock(run, wanted, lock);
}

}  // namespace

Result refusal(ExitStatus status, const std::string &problem) {
  Result result{.status = status, .report = {}};
  result.report.problems.push_back(problem);
  return result;
}

Result carryOut(const Options &options, const app::Edition &edition) {
  if (const std::optional<std::string> missing = agent::missingAgentFile(edition.oem)) {
    return refusal(kUnavailable, "the agent is not installed: " + *missing + " is missing");
  }
  if (options.verb == Verb::Show) return show();
  const WantedSettings wanted = wantedSettings(options, edition);
  if (!settings::isPort(wanted.port)) {
    return refusal(kUsage, "the stored port is not a number from 0 to 65535: give one with --port");
  }
  const Run run{.options = options, .edition = edition, .console = {}, .result = {}};
  return options.verb == Verb::Check ? check(run, wanted) : apply(run, wanted);
}

}  // namespace cli
