// runShellCommand compared with other ways to run "/bin/bash -c true" and wait for it.

#import <Foundation/Foundation.h>

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>

#include "agent/shell.h"

extern char **environ;  // NOLINT(readability-redundant-declaration): no POSIX header declares it

namespace {

constexpr int kCommands = 50;  // in one repetition

void runCommand(benchmark::State &state, agent::ShellMode mode) {
  for ([[maybe_unused]] const auto _ : state) {
    benchmark::DoNotOptimize(agent::runShellCommand(agent::kBash, "true", mode));
  }
}
BENCHMARK_CAPTURE(runCommand, status, agent::ShellMode::Status)->Iterations(kCommands);
BENCHMARK_CAPTURE(runCommand, capture, agent::ShellMode::Capture)->Iterations(kCommands);

void bareSpawn(benchmark::State &state) {
  std::array<char *, 4> arguments{const_cast<char *>("/bin/bash"), const_cast<char *>("-c"),
                                  const_cast<char *>("true"), nullptr};
  for ([[maybe_unused]] const auto _ : state) {
    pid_t child = -1;
    if (::posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
        ::waitpid(child, nullptr, 0) != child) {
      state.SkipWithError("cannot spawn");
    }
  }
}
BENCHMARK(bareSpawn)->Iterations(kCommands);

void taskClass(benchmark::State &state) {
  for ([[maybe_unused]] const auto _ : state) {
    @autoreleasepool {
      NSTask *task = [[[NSTask alloc] init] autorelease];
      [task setLaunchPath:@"/bin/bash"];
      [task setArguments:@[ @"-c", @"true" ]];
      [task launch];
      [task waitUntilExit];
    }
  }
}
BENCHMARK(taskClass)->Iterations(1);  // NSTask polls ten times a second

}  // namespace

BENCHMARK_MAIN();
