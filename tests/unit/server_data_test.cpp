#include "settings/server_data.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "doubles/fake_server_plist_path.h"
#include "doubles/scratch_folder.h"

namespace {

using doubles::ScratchFolder;
using settings::readServerData;
using settings::ServerData;

class StoredSettings : public testing::Test {
 protected:
  ServerData readDictionary(const std::string &members) const {
    return read("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" +
                members + "</dict></plist>");
  }
  ServerData read(const std::string &content) const {
    return readServerData(folder_.write("server.plist", content));
  }
  /// What a missing file gives; the language is the system's.
  static ServerData defaults() {
    const ServerData data = readServerData("/nowhere/server.plist");
    EXPECT_TRUE(data.language == "en" || data.language == "fr") << data.language;
    return {.language = data.language, .server = "", .port = "6000"};
  }

  ScratchFolder folder_;
};

TEST_F(StoredSettings, AreTakenFromTheFileWithAnyLanguageCode) {
  for (const char *code : {"en", "fr", "es", "it", "de", "xx", "EN", "de-CH", " "}) {
    EXPECT_EQ(readDictionary(std::string("<key>language</key><string>") + code +
                             "</string><key>server</key><string>2001:db8::1</string>"
                             "<key>port</key><integer>4000</integer><key>profile</key><true/>"),
              (ServerData{.language = code, .server = "2001:db8::1", .port = "4000"}));
  }
}

TEST_F(StoredSettings, AreValuesOnlyWhereTheyHaveTheRightType) {
  const auto values = [this](const std::string &members) {
    readDictionary(members);
    return settings::readStoredValues(folder_.file("server.plist"));
  };
  EXPECT_EQ(values("<key>language</key><string>de</string><key>server</key><string></string>"
                   "<key>port</key><integer>1</integer><key>profile</key><true/>"),
            (settings::StoredValues{.language = "de", .server = "", .port = "1", .profile = true}));
  EXPECT_EQ(values("<key>profile</key><false/>").profile, false);
  for (const char *wrong : {"<integer>1</integer>", "<string>true</string>", "<real>1</real>"}) {
    EXPECT_EQ(values(std::string("<key>profile</key>") + wrong).profile, std::nullopt) << wrong;
  }
  for (const char *wrong : {"<integer>1</integer>", "<true/>", "<array/>"}) {
    EXPECT_EQ(values(std::string("<key>language</key>") + wrong + "<key>server</key>" + wrong),
              settings::StoredValues{})
        << wrong;
  }
  EXPECT_EQ(settings::readStoredValues("/nowhere/server.plist"), settings::StoredValues{});
}

TEST_F(StoredSettings, FallBackOneKeyAtATime) {
  const ServerData expected{.language = defaults().language, .server = "mdm", .port = "6000"};
  EXPECT_EQ(readDictionary("<key>language</key><integer>1</integer><key>server</key>"
                           "<string>mdm</string><key>port</key><string>4000</string>"),
            expected);
  EXPECT_EQ(readDictionary("<key>language</key><string></string><key>server</key>"
                           "<string>mdm</string>"),
            expected);
  EXPECT_EQ(readDictionary("<key>port</key><integer>4000</integer><key>server</key><array/>"),
            (ServerData{.language = defaults().language, .server = "", .port = "4000"}));
}

TEST_F(StoredSettings, TakeOnlyAPropertyListIntegerAsPort) {
  for (const char *number : {"4000", "0", "-7", "70000", "5000000000", "9223372036854775807"}) {
    EXPECT_EQ(readDictionary(std::string("<key>port</key><integer>") + number + "</integer>").port,
              number);
  }
  for (const char *value : {"<string>4000</string>", "<real>4000</real>", "<real>4000.5</real>",
                            "<true/>", "<false/>", "<array><integer>4000</integer></array>",
                            "<data>NDAwMA==</data>", "<date>2024-03-05T14:07:09Z</date>"}) {
    EXPECT_EQ(readDictionary(std::string("<key>port</key>") + value).port, "6000") << value;
  }
}

TEST_F(StoredSettings, AreDefaultsForEveryFileThatDoesNotHoldADictionary) {
  const std::string good =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
      "<key>server</key><string>mdm</string></dict></plist>";
  ASSERT_EQ(read(good).server, "mdm");
  const std::string bad[] = {
      "",
      " ",
      "garbage",
      "<?xml version=\"1.0\"?>",
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>",
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><string>x</string></plist>",
      std::string("\0\0\0", 3),
      "bplist00",
      "bplist00" + std::string(32, '\xFF'),
      ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict><key>server</key>"
       "<string>\xFF\xFE\xFF</string></dict></plist>"),
      std::string(200'000, '('),
      std::string(200'000, '<'),
  };
  for (const std::string &content : bad) {
    EXPECT_EQ(read(content), defaults()) << content.substr(0, 60);
  }
  for (std::size_t length = 0; length < good.size() - std::string("</plist>").size(); ++length) {
    ServerData data = read(good.substr(0, length));
    if (data.server == "mdm") data.server.clear();  // some readers do without the end of the file
    EXPECT_EQ(data, defaults()) << length;
  }
}

TEST_F(StoredSettings, AreDefaultsForAMissingFileAndAFolder) {
  EXPECT_EQ(readServerData(folder_.file("missing")), defaults());
  EXPECT_EQ(readServerData(folder_.path().string()), defaults());
  EXPECT_EQ(readServerData(""), defaults());
}

TEST_F(StoredSettings, OfAHugeFileDoNotCrash) {
  // Read or rejected as a whole, as the platform does.
  ServerData data =
      readDictionary("<key>port</key><integer>4000</integer><key>server</key><string>" +
                     std::string(20'000'000, 'x') + "</string>");
  if (data.port == "4000") {
    EXPECT_EQ(data.server, std::string(20'000'000, 'x'));
    data.server.clear();
    data.port = "6000";
  }
  EXPECT_EQ(data, defaults());
}

TEST_F(StoredSettings, AreReadEachTimeFromTheFileInTheLibraryFolderWhereThereIsOne) {
  doubles::setServerPlistPath(folder_.file("server.plist"));
  const auto stored = [&](const char *server) {
    readDictionary(std::string("<key>server</key><string>") + server + "</string>");
    return settings::getServerData()->server;
  };
  EXPECT_EQ(stored("one"), "one");
  EXPECT_EQ(stored("two"), "two");
  std::filesystem::remove(folder_.file("server.plist"));
  EXPECT_EQ(settings::getServerData(), defaults());
  doubles::setServerPlistPath(std::nullopt);
  EXPECT_EQ(settings::getServerData(), std::nullopt);
}

TEST_F(StoredSettings, AreReadWithoutAMessage) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  read("garbage");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(ScratchFolder::read(folder_.file("server.plist")), "garbage");
}

TEST(SystemLanguage, IsNarrowedToEnglishAndFrench) {
  struct {
    std::vector<std::string> preferred;
    std::optional<std::string> locale;
    const char *expected;
  } const cases[] = {
      {{"fr-FR", "en"}, "de", "fr"},
      {{"en"}, "fr", "en"},
      {{"fr"}, {}, "fr"},
      {{"de-DE", "fr"}, "fr", "en"},
      {{"es-ES"}, {}, "en"},
      {{"it"}, {}, "en"},
      {{"FR"}, {}, "en"},
      {{"f"}, {}, "en"},
      {{""}, "fr", "en"},
      {{"fro"}, {}, "fr"},
      {{}, "fr", "fr"},
      {{}, "en", "en"},
      {{}, "de", "en"},
      {{}, "fr_FR", "en"},
      {{}, {}, "en"},
      {{"\xC3\xA9n"}, {}, "en"},
      // Two characters, not two bytes: an "r" with an acute accent is a different letter.
      {{"\xC3\xA9"
        "a-X"},
       {},
       "en"},
      {{"fr\xCC\x81"}, {}, "en"},
      {{"f\xCC\x81r"}, {}, "en"},
      {{"fra\xCC\x81"}, {}, "fr"},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(settings::systemLanguage(c.preferred, c.locale), c.expected)
        << (c.preferred.empty() ? "(none)" : c.preferred.front()) << " / "
        << c.locale.value_or("(none)");
  }
}

}  // namespace
