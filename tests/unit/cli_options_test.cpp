#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "app/edition.h"
#include "cli/options.h"

namespace {

using cli::parseOptions;
using cli::Verb;
using Arguments = std::vector<std::string>;

const app::Edition &zentavo() { return *app::editionWithOem("Zentavo"); }

cli::ParsedOptions parse(const Arguments &arguments) { return parseOptions(arguments, zentavo()); }

/// `apply` with a valid server and one more option.
Arguments applyWith(const std::string &option, const std::string &value) {
  return {"apply", "--server", "mdm", option, value};
}

TEST(Options, TakeEveryOptionOfApply) {
  const cli::ParsedOptions parsed = parse({"apply", "--json", "--server", "192.0.2.10", "--port",
                                           "4000", "--language", "fr", "--reset", "--force"});
  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.options.verb, Verb::Apply);
  EXPECT_EQ(parsed.options.server, "192.0.2.10");
  EXPECT_EQ(parsed.options.port, "4000");
  EXPECT_EQ(parsed.options.language, "fr");
  EXPECT_TRUE(parsed.options.reset && parsed.options.force && parsed.options.json);
}

TEST(Options, AreEmptyWhenTheyAreNotGiven) {
  const cli::ParsedOptions parsed = parse({"check", "--server", "mdm"});
  EXPECT_EQ(parsed.error, "");
  EXPECT_EQ(parsed.options.verb, Verb::Check);
  EXPECT_EQ(parsed.options.port, std::nullopt);
  EXPECT_EQ(parsed.options.language, std::nullopt);
  EXPECT_FALSE(parsed.options.reset || parsed.options.force || parsed.options.json);
}

TEST(Options, NameTheVerbFirst) {
  struct {
    Arguments arguments;
    Verb verb;
  } const cases[] = {{{"show"}, Verb::Show},
                     {{"show", "--json"}, Verb::Show},
                     {{"--help"}, Verb::Help},
                     {{"-h"}, Verb::Help},
                     {{"--version"}, Verb::Version}};
  for (const auto &c : cases) {
    EXPECT_EQ(parse(c.arguments).error, "") << c.arguments.front();
    EXPECT_EQ(parse(c.arguments).options.verb, c.verb) << c.arguments.front();
  }
  for (const Arguments &arguments :
       {Arguments{}, {""}, {"remove"}, {"Apply"}, {"--json"}, {"--server", "mdm", "apply"}}) {
    EXPECT_EQ(parse(arguments).error, "the first argument must be show, check or apply");
  }
}

TEST(Options, RefuseWhatAVerbDoesNotTake) {
  const Arguments refused[] = {
      {"show", "--server", "mdm"},
      {"show", "show"},
      {"check", "--server", "mdm", "--reset"},
      {"check", "--server", "mdm", "--force"},
      {"apply", "mdm"},
      {"apply", "--server", "mdm", ""},
      {"apply", "--server", "mdm", " "},
      {"apply", "--server", "mdm", "--"},
      {"apply", "--server", "mdm", "--server --port"},
      {"apply", "--server", "mdm", "--server="},
      {"apply", "--server=mdm"},
      {"apply", "--server", "mdm", "--serve"},
      {"apply", "--server", "mdm", "-json"},
      {"apply", "--server", "mdm", "--JSON"},
      {"apply", "--server", "mdm", "--password", "x"},
      {"apply", "--server", "mdm", "--user", "alice"},
      {"apply", "--server", "mdm", "--console", "alice"},
      {"--help", "--json"},
      {"--version", "apply"},
  };
  for (const Arguments &arguments : refused) {
    EXPECT_TRUE(parse(arguments).error.ends_with("is not an option of " + arguments.front()))
        << testing::PrintToString(arguments) << parse(arguments).error;
  }
}

TEST(Options, NeverRepeatAnArgumentThatIsRefused) {
  for (const Arguments &arguments : {Arguments{"s3cret"},
                                     {"show", "s3cret"},
                                     {"apply", "--server", "s3cret!"},
                                     {"apply", "--server", "mdm", "--port", "s3cret"},
                                     {"apply", "--server", "mdm", "--language", "s3cret"}}) {
    const std::string error = parse(arguments).error;
    EXPECT_NE(error, "");
    EXPECT_EQ(error.find("s3cret"), std::string::npos) << error;
  }
}

TEST(Options, RefuseAnOptionGivenTwiceAndOneWithoutItsValue) {
  EXPECT_EQ(parse({"show", "--json", "--json"}).error, "--json is given twice");
  EXPECT_EQ(parse({"apply", "--server", "a", "--server", "a"}).error, "--server is given twice");
  EXPECT_EQ(parse({"apply", "--server"}).error, "--server needs a value");
  EXPECT_EQ(parse({"apply", "--server", "mdm", "--port"}).error, "--port needs a value");
}

TEST(Options, RequireAServer) {
  EXPECT_EQ(parse({"apply"}).error, "--server is required");
  EXPECT_EQ(parse({"check", "--port", "1"}).error, "--server is required");
}

TEST(ServerOption, IsAnAddressOrAHostName) {
  for (const char *server : {"192.0.2.10", "::1", "2001:db8::1", "::ffff:192.0.2.10", "mdm",
                             "a.b-c_d.e", "A1", "999.1.1.1", "_x", "."}) {
    EXPECT_EQ(parse({"apply", "--server", server}).error, "") << server;
  }
  EXPECT_EQ(parse({"apply", "--server", std::string(255, 'a')}).error, "");
  std::vector<std::string> refused{std::string("192.0.2.10\0x", 12), std::string("mdm\0", 4),
                                   std::string(256, 'a')};
  for (const char *server :
       {"",        "-mdm",       "--json",   "a b",       " mdm",      "mdm ", "mdm\n",
        "mdm\t",   "a\"b",       "a'b",      "$(id)",     "`id`",      "a;b",  "a&b",
        "a|b",     "a>b",        "a\\b",     "a/b",       "a*",        "a:80", "[::1]",
        "::1%en0", "http://mdm", "user@mdm", "</string>", "m\xC3\xA9", "\xFF"}) {
    refused.emplace_back(server);
  }
  for (const std::string &server : refused) {
    EXPECT_EQ(parse({"apply", "--server", server}).error,
              "--server needs an IP address or a host name")
        << server;
  }
}

TEST(PortOption, IsANumberUpTo65535InPlainDigits) {
  struct {
    const char *given, *taken;
  } const accepted[] = {{"0", "0"},      {"6000", "6000"}, {"65535", "65535"},
                        {"+80", "80"},   {"-0", "0"},      {"+0", "0"},
                        {"00080", "80"}, {"000", "0"},     {"+00", "0"}};
  for (const auto &c : accepted) {
    EXPECT_EQ(parse(applyWith("--port", c.given)).error, "") << c.given;
    EXPECT_EQ(parse(applyWith("--port", c.given)).options.port, c.taken) << c.given;
  }
  for (const char *port : {"", "65536", "-1", "--json", "6000;id", "$(id)"}) {
    EXPECT_EQ(parse(applyWith("--port", port)).error, "--port needs a number from 0 to 65535")
        << port;
  }
}

TEST(LanguageOption, IsOneThatTheEditionOffers) {
  for (const app::Edition &edition : app::kEditions) {
    for (std::size_t number = 0; number < i18n::kLanguageCount; ++number) {
      const auto language = static_cast<i18n::Language>(number);
      const std::string code = i18n::getLanguageType(language);
      const bool isOffered = edition.languages.contains(language);
      const auto parsed = parseOptions(applyWith("--language", code), edition);
      EXPECT_EQ(parsed.error.empty(), isOffered) << edition.oem << ' ' << code;
    }
    for (const char *code : {"", "EN", "xx", "e", "eng", "en ", "$(id)"}) {
      EXPECT_EQ(parseOptions(applyWith("--language", code), edition).error,
                "--language needs a language that this edition offers")
          << edition.oem << ' ' << code;
    }
  }
}

TEST(Options, AskForJsonEvenWhenTheyAreInvalid) {
  EXPECT_TRUE(parse({"apply", "--json"}).options.json);
  EXPECT_TRUE(parse({"apply", "--port", "x", "--json"}).options.json);
  EXPECT_FALSE(parse({"apply", "--port", "x"}).options.json);
}

TEST(Usage, NamesTheLanguagesOfTheEdition) {
  EXPECT_NE(cli::usage(zentavo()).find("one of: en fr;"), std::string::npos);
  EXPECT_NE(cli::usage(*app::editionWithOem("Quorvix")).find("one of: en fr it de es;"),
            std::string::npos);
}

TEST(Usage, FitsATerminalOf80Columns) {
  for (const app::Edition &edition : app::kEditions) {
    std::istringstream usage(cli::usage(edition));
    for (std::string line; std::getline(usage, line);) EXPECT_LE(line.size(), 80U) << line;
  }
}

}  // namespace
