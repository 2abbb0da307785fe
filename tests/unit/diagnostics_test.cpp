#include "app/diagnostics.h"

#include <gtest/gtest.h>

#include <ctime>
#include <regex>

#include "app/error_log.h"

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

TEST(ErrorLog, WritesTimeBlankMessageAndLineEnd) {
  EXPECT_EQ(afterTime(logged("Disk full")), " Disk full\n");
  EXPECT_EQ(afterTime(logged("")), " \n");
  EXPECT_EQ(afterTime(logged("ends\n")), " ends\n\n");
  EXPECT_EQ(afterTime(logged("caf\xC3\xA9 \xE6\x97\xA5")), " caf\xC3\xA9 \xE6\x97\xA5\n");
}

TEST(ErrorLog, CutsAMessageAtANULAndStillEndsTheLine) {
  EXPECT_EQ(afterTime(logged(std::string("before\0after", 12))), " before\n");
}

TEST(ErrorLog, ShowsTheTimeOnA24HourClockWithMilliseconds) {
  std::tm afternoon{.tm_sec = 9, .tm_min = 7, .tm_hour = 14, .tm_mday = 5, .tm_mon = 2};
  afternoon.tm_year = 2024 - 1900;
  afternoon.tm_isdst = -1;
  const auto second = std::chrono::system_clock::from_time_t(std::mktime(&afternoon));
  EXPECT_EQ(app::errorLogTime(second + std::chrono::microseconds(42500)),
            "2024-03-05 14:07:09.042");
  EXPECT_EQ(app::errorLogTime(second), "2024-03-05 14:07:09.000");
  EXPECT_EQ(app::errorLogTime(second - std::chrono::hours(14)), "2024-03-05 00:07:09.000");
}

TEST(ErrorLog, ShowsLocalTime) {
  const auto localTime = [] {
    const std::time_t now = std::time(nullptr);
    char text[20];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&now));
    return std::string(text);
  };
  const std::string before = localTime();
  const std::string shown = logged("").substr(0, 19);
  EXPECT_LE(before, shown);
  EXPECT_LE(shown, localTime());
}

TEST(Remarks, GoToStandardOutputAsOneLineEach) {
  testing::internal::CaptureStdout();
  app::printLine("one");
  app::printLine("");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "one\n\n");
}

TEST(StderrStream, AddsNothing) {
  testing::internal::CaptureStderr();
  app::StderrOutputStream().write("a");
  app::StderrOutputStream().write("");
  app::StderrOutputStream().write("b\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "ab\n");
}

TEST(FatalErrorDeathTest, SaysWhatWasWrongAndAborts) {
  EXPECT_EXIT(app::fatalError("outlet port is not connected"), testing::KilledBySignal(SIGABRT),
              "^fatal error: outlet port is not connected\n$");
}

}  // namespace
