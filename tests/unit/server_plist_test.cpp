#include "agent/server_plist.h"

#include <gtest/gtest.h>

#include "doubles/fake_server_plist_path.h"
#include "doubles/scratch_folder.h"
#include "settings/server_data.h"

namespace {

using agent::ServerPlist;
using doubles::ScratchFolder;

std::string expectedText(const std::string &lang, const std::string &server,
                         const std::string &port, const std::string &profile) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "    <!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "    <plist version=\"1.0\">\n"
         "    <dict>\n"
         "        <key>language</key>\n"
         "        <string>" +
         lang +
         "</string>\n"
         "        <key>server</key>\n"
         "        <string>" +
         server +
         "</string>\n"
         "        <key>port</key>\n"
         "        <integer>" +
         port +
         "</integer>\n"
         "        <key>profile</key>\n"
         "        <" +
         profile +
         "/>\n"
         "    </dict>\n"
         "    </plist>";
}

TEST(ServerPlistText, IsTheSameByteForByteAroundValuesThatAreInsertedUnchanged) {
  EXPECT_EQ(agent::serverPlistText({.server = "mdm", .port = "+80", .lang = "de", .profile = true}),
            expectedText("de", "mdm", "+80", "true"));
  EXPECT_EQ(agent::serverPlistText({.server = "a&b<c>\"'", .port = "", .lang = ""}),
            expectedText("", "a&b<c>\"'", "", "false"));
}

class ServerPlistFile : public testing::Test {
 protected:
  void SetUp() override { doubles::setServerPlistPath(path_); }
  void TearDown() override { doubles::setServerPlistPath(std::nullopt); }

  std::string generateAndReturnErrors(const ServerPlist &values) const {
    testing::internal::CaptureStderr();
    agent::generateServerPlistFile(values);
    return testing::internal::GetCapturedStderr();
  }

  const ServerPlist values_{.server = "192.0.2.10", .port = "4000", .lang = "fr", .profile = true};
  ScratchFolder folder_;
  std::string path_ = folder_.file("server.plist");
};

TEST_F(ServerPlistFile, ContainsTheTextAndCanBeRead) {
  EXPECT_EQ(generateAndReturnErrors(values_), "");
  EXPECT_EQ(ScratchFolder::read(path_), expectedText("fr", "192.0.2.10", "4000", "true"));
  EXPECT_EQ(settings::getServerData(),
            (settings::ServerData{.language = "fr", .server = "192.0.2.10", .port = "4000"}));
}

TEST_F(ServerPlistFile, KeepsABackslash) {
  const std::string server = R"(files\U0041\n)";
  EXPECT_EQ(generateAndReturnErrors({.server = server, .port = "4000", .lang = "de"}), "");
  EXPECT_EQ(settings::getServerData(),
            (settings::ServerData{.language = "de", .server = server, .port = "4000"}));
}

TEST_F(ServerPlistFile, WithXMLMarkupIsNotAPropertyListAndReadsLikeAMissingFile) {
  EXPECT_EQ(generateAndReturnErrors({.server = "a&b<c", .port = "4000", .lang = "de"}), "");
  EXPECT_EQ(ScratchFolder::read(path_), expectedText("de", "a&b<c", "4000", "false"));
  const auto data = settings::getServerData();
  ASSERT_TRUE(data);
  EXPECT_EQ(data->server, "");
  EXPECT_EQ(data->port, "6000");
  std::filesystem::remove(path_);
  EXPECT_EQ(data, settings::getServerData());
}

TEST_F(ServerPlistFile, IsReportedWithPathAndErrorWhenItCannotBeWritten) {
  const std::string missing = folder_.file("missing/server.plist");
  doubles::setServerPlistPath(missing);
  const std::string line = generateAndReturnErrors(values_);
  EXPECT_TRUE(
      line.ends_with(" unable to write in " + missing + " with error No such file or directory\n"))
      << line;
}

TEST_F(ServerPlistFile, IsNotWrittenAndNothingIsPrintedWithoutALibraryFolder) {
  doubles::setServerPlistPath(std::nullopt);
  EXPECT_EQ(generateAndReturnErrors(values_), "");
  EXPECT_FALSE(agent::generateServerPlistFile(values_));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

}  // namespace
