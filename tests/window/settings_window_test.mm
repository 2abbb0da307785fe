#import "window/window_test.h"

#include "app/edition.h"
#include "app/ns_string.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"

namespace windowtest {
namespace {

using doubles::recordingShell;
using i18n::Language;
using Strings = std::vector<std::string>;

constexpr const char *kOutlets[] = {
    "setting_label", "language_label", "selectLanguage", "server_label",   "mode",
    "servername",    "port_label",     "port",           "reset_settings", "MDM_profile",
    "testChoice",    "TestButton",     "testStatus",     "Apply_button",   "Quit_button"};

class SettingsWindow : public WindowTest {
 protected:
  static NSInteger selectedItem(ServerWindowController *controller) {
    return [outlet<NSPopUpButton>(controller, "selectLanguage") indexOfSelectedItem];
  }
  static std::size_t occurrences(const std::string &text, const std::string &part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
  }
  /// Every string that the window shows in the current language, in a fixed order.
  static Strings strings(ServerWindowController *controller) {
    return {app::utf8([outlet<NSTextFieldCell>(controller, "setting_label") stringValue]),
            fieldText(controller, "language_label"),
            fieldText(controller, "server_label"),
            fieldText(controller, "port_label"),
            buttonTitle(controller, "TestButton"),
            buttonTitle(controller, "reset_settings"),
            buttonTitle(controller, "Apply_button"),
            buttonTitle(controller, "Quit_button"),
            app::utf8([outlet<NSTextField>(controller, "servername") toolTip]),
            itemTitles(controller, "selectLanguage")};
  }
  static Strings catalogueStrings(const std::string &entry, const std::string &serverCaption,
                                  const std::string &hint, const Strings &languages) {
    const auto common = [&](const char *key) { return catalogueString(entry, "Common", key); };
    std::string items;
    for (const std::string &name : languages) {
      items += (items.empty() ? "" : ", ") + catalogueString(entry, "Language", name);
    }
    return {common("settings"),
            catalogueString(entry, "Language", "lang") + ":",
            serverCaption + ":",
            common("port") + ":",
            common("test"),
            common("reset_settings"),
            common("apply"),
            common("quit"),
            hint,
            items};
  }
};

const Strings kAll{"english", "french", "italian", "german", "spanish"};
const Strings kEnFr{"english", "french"};
const Strings kEn{"english"};
const Strings kEnGe{"english", "german"};

TEST_F(SettingsWindow, LoadsWithTheItemsSelectionAndStringsOfItsEditionAndStoredLanguage) {
  struct {
    const char *oem, *code;
    NSInteger item;
    Language lang;
    const char *entry, *beforeServer, *afterServer, *hint;
    const Strings &languages;
  } const rows[] = {
      {"Quorvix", "en", 0, Language::En, "En", "Oskel ", "", "ip or hostname", kAll},
      {"Quorvix", "fr", 1, Language::Fr, "Fr", "", " Oskel", "ip ou <nom de machine>", kAll},
      {"Quorvix", "it", 2, Language::It, "It", "", " Oskel", "ip o <Nome host>", kAll},
      {"Quorvix", "de", 3, Language::Ge, "Ge", "Oskel-", "", "ip oder Hostname", kAll},
      {"Quorvix", "es", 4, Language::Es, "Es", "", " Oskel", "ip o <nombre de host>", kAll},
      {"Zentavo", "en", 0, Language::En, "En", "Zentavo ", "", "ip or hostname", kEnFr},
      {"Zentavo", "de", 1, Language::Fr, "Fr", "", " Zentavo", "ip ou <nom de machine>", kEnFr},
      {"Fennrow", "fr", 0, Language::En, "En", "Fennrow ", "", "ip or hostname", kEn},
      {"Tollwick", "en", 0, Language::En, "En", "Tollwick ", "", "ip or hostname", kEnGe},
      {"Tollwick", "xx", 1, Language::Ge, "Ge", "Tollwick-", "", "ip oder Hostname", kEnGe},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.oem) + " " + row.code);
    becomeEdition(row.oem);
    store(row.code, "2001:db8::1", "70000");
    ServerWindowController *controller = openSettings();
    EXPECT_EQ(app::utf8([[controller window] title]), app::editionWithOem(row.oem)->appName);
    EXPECT_EQ(fieldText(controller, "servername"), "2001:db8::1");
    EXPECT_EQ(fieldText(controller, "port"), "70000");
    EXPECT_EQ(selectedItem(controller), row.item);
    EXPECT_EQ(app::appStatics().lang, row.lang);
    const std::string server = catalogueString(row.entry, "Common", "server");
    EXPECT_EQ(strings(controller),
              catalogueStrings(row.entry, row.beforeServer + server + row.afterServer, row.hint,
                               row.languages));
    [[controller window] orderOut:nil];
  }
}

TEST_F(SettingsWindow, ShowsDefaultsWithoutAFile) {
  // The system's language is English or French here; either is one that this edition offers.
  ServerWindowController *controller = openSettings();
  EXPECT_EQ(fieldText(controller, "servername"), "");
  EXPECT_EQ(fieldText(controller, "port"), "6000");
  const bool french = app::appStatics().lang == Language::Fr;
  EXPECT_TRUE(french || app::appStatics().lang == Language::En);
  EXPECT_EQ(selectedItem(controller), french ? 1 : 0);
}

TEST_F(SettingsWindow, KeepsTheInitialItemOfItsEditionWithoutAnyRecord) {
  struct {
    const char *oem;
    NSInteger item;
    Language lang;
  } const rows[] = {{"Quorvix", 0, Language::En},
                    {"Zentavo", 1, Language::Fr},
                    {"Fennrow", 0, Language::En},
                    {"Tollwick", 1, Language::Ge}};
  doubles::setServerPlistPath(std::nullopt);
  for (const auto &row : rows) {
    SCOPED_TRACE(row.oem);
    becomeEdition(row.oem);
    ServerWindowController *controller = openSettings();
    EXPECT_EQ(selectedItem(controller), row.item);
    EXPECT_EQ(app::appStatics().lang, row.lang);
    EXPECT_EQ(fieldText(controller, "port"), "6000");
    EXPECT_EQ(fieldText(controller, "servername"), "");
    [[controller window] orderOut:nil];
  }
}

TEST_F(SettingsWindow, LeavesTheLanguagesAloneInAnUnknownEditionButTranslates) {
  become("Another", "Another Utility");
  app::appStatics().lang = Language::It;
  store("de", "mdm", "4000");
  ServerWindowController *controller = openSettings();
  EXPECT_EQ(selectedItem(controller), 0);
  EXPECT_EQ(app::appStatics().lang, Language::It);
  EXPECT_EQ(strings(controller),
            catalogueStrings("It", catalogueString("It", "Common", "server") + " Another",
                             "ip o <Nome host>", kAll));
  EXPECT_EQ(fieldText(controller, "servername"), "mdm");
  EXPECT_EQ(fieldText(controller, "port"), "4000");
}

TEST_F(SettingsWindow, AsksForTheProfileOnceWithTheTypedCredentialsAndShowsTheAnswerDisabled) {
  app::appStatics().user = "alice";
  app::appStatics().pwd = "pw";
  for (const bool installed : {true, false}) {
    doubles::resetShell();
    recordingShell().answer = [=](const doubles::RecordedCommand &) {
      return agent::ShellResult{.text = installed ? "com.zentavo.vardex.agent\n" : "", .status = 0};
    };
    ServerWindowController *controller = openSettings();
    EXPECT_EQ(recordingShell().commandLines(),
              (Strings{"/bin/echo \"pw\" | /usr/bin/sudo -u \"alice\" -S /usr/bin/sudo -S "
                       "/usr/bin/sudo /usr/bin/profiles list |  grep com.zentavo.vardex.agent"}));
    EXPECT_EQ(app::appStatics().mdm_profile, installed);
    NSButton *box = outlet<NSButton>(controller, "MDM_profile");
    EXPECT_EQ([box state], installed ? NSControlStateValueOn : NSControlStateValueOff);
    EXPECT_FALSE([box isEnabled]);
    [box performClick:nil];
    EXPECT_EQ([box state], installed ? NSControlStateValueOn : NSControlStateValueOff);
  }
}

// Once loaded, they are visible like all others.
TEST_F(SettingsWindow, HidesControlsInItsInterfaceFile) {
  ServerWindowController *controller = [[ServerWindowController alloc] init];
  NSArray *topLevelObjects = nil;
  ASSERT_TRUE([[NSBundle mainBundle] loadNibNamed:@"ServerWindowController"
                                            owner:controller
                                  topLevelObjects:&topLevelObjects]);
  for (const char *name : {"server_label", "mode", "servername", "port", "port_label", "testChoice",
                           "TestButton", "testStatus"}) {
    EXPECT_TRUE([outlet<NSView>(controller, name) isHidden]) << name;
  }
  EXPECT_FALSE([[controller valueForKey:@"window"] isVisible]);
}

TEST_F(SettingsWindow, StartsWithoutResetAndWithTheFirstModeAndTest) {
  ServerWindowController *controller = openSettings();
  EXPECT_EQ([outlet<NSButton>(controller, "reset_settings") state], NSControlStateValueOff);
  EXPECT_EQ([outlet<NSPopUpButton>(controller, "mode") indexOfSelectedItem], 0);
  EXPECT_EQ([outlet<NSPopUpButton>(controller, "testChoice") indexOfSelectedItem], 0);
  EXPECT_EQ(itemTitles(controller, "mode"), "IP, Hostname");
  EXPECT_EQ(itemTitles(controller, "testChoice"), "Ping, TCP");
}

TEST_F(SettingsWindow, TranslatesItselfWhenALanguageIsChosenAndStoresNothing) {
  becomeEdition("Quorvix");
  store("en", "mdm", "4000");
  const std::string before = doubles::ScratchFolder::read(plist_);
  ServerWindowController *controller = openSettings();
  const std::size_t commands = recordingShell().commands.size();
  [[outlet<NSPopUpButton>(controller, "selectLanguage") menu] performActionForItemAtIndex:3];
  EXPECT_EQ(app::appStatics().lang, Language::Ge);
  EXPECT_EQ(strings(controller),
            catalogueStrings("Ge", "Oskel-" + catalogueString("Ge", "Common", "server"),
                             "ip oder Hostname", kAll));
  EXPECT_EQ(recordingShell().commands.size(), commands);
  EXPECT_EQ(doubles::ScratchFolder::read(plist_), before);
}

TEST_F(SettingsWindow, KeepsEveryStringWithoutAUsableCatalogueButTrimsAndSelects) {
  setCatalogue("not JSON");
  struct {
    const char *oem, *code;
    NSInteger item;
    Language lang;
    const char *languages;
  } const rows[] = {
      {"Zentavo", "fr", 1, Language::Fr, "English, French"},
      {"Quorvix", "it", 2, Language::It, "English, French, Italian, German, Spanish"}};
  for (const auto &row : rows) {
    becomeEdition(row.oem);
    store(row.code, "mdm", "4000");
    testing::internal::CaptureStderr();
    ServerWindowController *controller = openSettings();
    const std::string errors = testing::internal::GetCapturedStderr();
    // Once per translation; GNUstep may add words of its own.
    EXPECT_EQ(occurrences(errors, " error to get language: "), 2U) << errors;
    EXPECT_EQ(itemTitles(controller, "selectLanguage"), row.languages);
    EXPECT_EQ(selectedItem(controller), row.item);
    EXPECT_EQ(app::appStatics().lang, row.lang);
    EXPECT_EQ(buttonTitle(controller, "Apply_button"), "Apply");
    EXPECT_EQ(buttonTitle(controller, "Quit_button"), "Quit");
    EXPECT_EQ(fieldText(controller, "port_label"), "Port:");
  }
}

TEST_F(SettingsWindow, ReadsTheCatalogueOnEachTranslationAndShowsEvenAnEmptyString) {
  store("en", "", "6000");
  ServerWindowController *controller = openSettings();
  std::string catalogue = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  const std::string apply = "\"apply\": \"Apply\"";
  setCatalogue(catalogue.replace(catalogue.find(apply), apply.size(), "\"apply\": \"\""));
  [controller translate];
  EXPECT_EQ(buttonTitle(controller, "Apply_button"), "");
}

TEST_F(SettingsWindow, SkipsTitlesOfItemsThatThePopUpLacks) {
  become("Quorvix", "Zentavo Configuration Utility");
  store("en", "", "6000");
  EXPECT_EQ(itemTitles(openSettings(), "selectLanguage"),
            catalogueString("En", "Language", "english") + ", " +
                catalogueString("En", "Language", "french"));
}

TEST_F(SettingsWindow, HasTheDefaultPortWhicheverInitialiserMakesItsController) {
  // GNUstep lacks the initialisers that replaced these two.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
  NSMutableData *archive = [NSMutableData data];
  NSKeyedArchiver *archiver =
      [[[NSKeyedArchiver alloc] initForWritingWithMutableData:archive] autorelease];
  [archiver finishEncoding];
  NSCoder *coder = [[[NSKeyedUnarchiver alloc] initForReadingWithData:archive] autorelease];
#pragma clang diagnostic pop
  for (ServerWindowController *controller : {[[ServerWindowController alloc] init],
                                             [[ServerWindowController alloc] initWithCoder:coder],
                                             [[ServerWindowController alloc] initWithWindow:nil]}) {
    EXPECT_EQ(app::utf8([controller valueForKey:@"defaultPort"]), "6000");
    [controller release];
  }
}

using SettingsWindowDeathTest = SettingsWindow;

TEST_F(SettingsWindowDeathTest, EndsTheProgramWithStatus0ByQuit) {
  EXPECT_EXIT(
      runAndSend(outlet<NSButton>(openSettings(), "Quit_button"), @selector(performClick:), nil),
      testing::ExitedWithCode(0), "");
}

TEST_F(SettingsWindowDeathTest, StopsTheProgramWhereTheLoadOrAnActionNeedsAMissingOutlet) {
  std::vector<std::pair<const char *, SEL>> rows{{"testStatus", @selector(TestAction:)},
                                                 {"servername", @selector(TestAction:)},
                                                 {"port", @selector(TestAction:)},
                                                 {"mode", @selector(TestAction:)},
                                                 {"testChoice", @selector(TestAction:)},
                                                 {"servername", @selector(ApplyAction:)},
                                                 {"port", @selector(ApplyAction:)},
                                                 {"mode", @selector(ApplyAction:)},
                                                 {"selectLanguage", @selector(ApplyAction:)},
                                                 {"reset_settings", @selector(ApplyAction:)},
                                                 {"selectLanguage", @selector(languageAction:)}};
  for (const char *name : kOutlets) rows.emplace_back(name, @selector(windowDidLoad));
  // Loaded twice in effect, so an edition that removes no items.
  becomeEdition("Quorvix");
  store("en", "192.0.2.10", "6000");
  for (const auto &[name, message] : rows) {
    EXPECT_EXIT(
        {
          ServerWindowController *controller = openSettings();
          disconnect(controller, name);
          [controller performSelector:message withObject:nil];
        },
        testing::KilledBySignal(SIGABRT),
        std::string("fatal error: outlet ") + name + " is not connected");
  }
}

}  // namespace
}  // namespace windowtest
