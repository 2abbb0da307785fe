#include "app/diagnostics.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <regex>

#include "app/error_log.h"
#include "doubles/environment_variable.h"

namespace {

std::string logged(const std::string &message) {
  testing::internal::CaptureStderr();
  app::printErrorLog(message);
  return testing::internal::GetCapturedStderr();
}

std::string afterTime(const std::string &line) {
  static const std::regex time("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}");
  std::smatch match;
  return std::regex_search(line, match, time, std::regex_constants::match_continuous)
             ? match.suffix().str()
             : "no time stamp: " + line;
}

TEST(ErrorLog, WritesTimeSpaceMessageUpToANULAndNewline) {
  EXPECT_EQ(afterTime(logged("Disk full")), " Disk full\n");
  EXPECT_EQ(afterTime(logged("")), " \n");
  EXPECT_EQ(afterTime(logged("ends\n")), " ends\n\n");
  EXPECT_EQ(afterTime(logged("caf\xC3\xA9 \xE6\x97\xA5")), " caf\xC3\xA9 \xE6\x97\xA5\n");
  EXPECT_EQ(afterTime(logged(std::string("before\0after", 12))), " before\n");
}

/// Ends the process after writing the times of three moments: 30 December 2024, 23:30:00.0425,
/// then 5 March 2024, 14:07:09, then 00:07:09 of the same day, all in UTC.
[[noreturn]] void showThreeTimes() {
  using std::chrono::system_clock;
  const auto second = [](std::time_t count) { return system_clock::from_time_t(count); };
  const std::string text =
      app::errorLogTime(second(1735601400) + std::chrono::microseconds(42500)) + "\n" +
      app::errorLogTime(second(1709647629)) + "\n" + app::errorLogTime(second(1709597229)) + "\n";
  std::fputs(text.c_str(), stderr);
  std::exit(0);
}

TEST(ErrorLogDeathTest, ShowsLocalTimeOnA24HourClockWithMillisecondsAndTheCalendarYear) {
  // The platform reads the time zone once, so each zone gets a process of its own.
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  struct {
    const char *zone, *expected;
  } const rows[] = {
      {"UTC", "2024-12-30 23:30:00.042\n2024-03-05 14:07:09.000\n2024-03-05 00:07:09.000\n"},
      {"Asia/Kathmandu",
       "2024-12-31 05:15:00.042\n2024-03-05 19:52:09.000\n2024-03-05 05:52:09.000\n"},
      {"America/St_Johns",
       "2024-12-30 20:00:00.042\n2024-03-05 10:37:09.000\n2024-03-04 20:37:09.000\n"},
  };
  for (const auto &row : rows) {
    const doubles::EnvironmentVariable zone("TZ", row.zone);
    const doubles::EnvironmentVariable zoneOnDebian("GNUSTEP_TZ", row.zone);
    EXPECT_EXIT(showThreeTimes(), testing::ExitedWithCode(0), std::string("^") + row.expected + "$")
        << row.zone;
  }
}

TEST(ErrorLog, ShowsTheTimeOfTheCall) {
  using std::chrono::system_clock;
  const std::string before = app::errorLogTime(system_clock::now());
  const std::string shown = logged("").substr(0, before.size());
  EXPECT_LE(before, shown);
  EXPECT_LE(shown, app::errorLogTime(system_clock::now()));
}

TEST(Output, IsOneLineForAStatusMessageAndWithoutAdditionOnStandardError) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (const char *text : {"one", "", "b\n"}) {
    app::printLine(text);
    app::StderrOutputStream().write(text);
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "one\n\nb\n\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "oneb\n");
}

TEST(BrokenPipes, MakeAWriteFailAndDoNotEndTheProgram) {
  const auto before = std::signal(SIGPIPE, SIG_DFL);
  app::ignoreBrokenPipes();
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  ::close(ends[0]);
  EXPECT_EQ(::write(ends[1], "x", 1), -1);
  EXPECT_EQ(errno, EPIPE);
  ::close(ends[1]);
  std::signal(SIGPIPE, before);
}

/// Whether the descriptor is the null device.
bool isNullDevice(int descriptor) {
  struct stat null;
  struct stat info;
  return ::stat("/dev/null", &null) == 0 && ::fstat(descriptor, &info) == 0 &&
         S_ISCHR(info.st_mode) && info.st_rdev == null.st_rdev;
}

TEST(ClosedStandardStreamsDeathTest, BecomeTheNullDeviceAndOpenOnesStay) {
  const auto check = [] {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
    app::openStandardStreams();
    const bool areOpen = isNullDevice(STDIN_FILENO) && isNullDevice(STDOUT_FILENO);
    std::_Exit(areOpen && !isNullDevice(STDERR_FILENO) ? 0 : 1);
  };
  EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST(FatalErrorDeathTest, NamesTheErrorAndAborts) {
  EXPECT_EXIT(app::fatalError("outlet port is not connected"), testing::KilledBySignal(SIGABRT),
              "^fatal error: outlet port is not connected\n$");
}

}  // namespace
