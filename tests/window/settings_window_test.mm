#import "window/window_test.h"

#include "app/edition.h"
#include "app/ns_string.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"

namespace windowtest {
namespace {

using doubles::recordingShell;
using i18n::Language;

constexpr const char *kOutlets[] = {
    "setting_label", "language_label", "selectLanguage", "server_label",   "mode",
    "servername",    "port_label",     "port",           "reset_settings", "MDM_profile",
    "testChoice",    "TestButton",     "testStatus",     "Apply_button",   "Quit_button"};

constexpr const char *kHiddenControls[] = {"server_label", "mode",       "servername",
                                           "port",         "port_label", "testChoice",
                                           "TestButton",   "testStatus"};

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
  static std::string strings(ServerWindowController *controller) {
    return app::utf8([outlet<NSTextFieldCell>(controller, "setting_label") stringValue]) + " | " +
           fieldText(controller, "language_label") + " | " + fieldText(controller, "server_label") +
           " | " + fieldText(controller, "port_label") + " | " +
           buttonTitle(controller, "TestButton") + " | " +
           buttonTitle(controller, "reset_settings") + " | " +
           buttonTitle(controller, "Apply_button") + " | " +
           buttonTitle(controller, "Quit_button") + " | " +
           app::utf8([outlet<NSTextField>(controller, "servername") toolTip]) + " | " +
           itemTitles(controller, "selectLanguage");
  }
  static std::string catalogueStrings(const std::string &entry, const std::string &serverCaption,
                                      const std::string &hint,
                                      const std::vector<std::string> &languages) {
    const auto common = [&](const char *key) { return catalogueString(entry, "Common", key); };
    std::string items;
    for (const std::string &name : languages) {
      items += (items.empty() ? "" : ", ") + catalogueString(entry, "Language", name);
    }
    return common("settings") + " | " + catalogueString(entry, "Language", "lang") + ": | " +
           serverCaption + ": | " + common("port") + ": | " + common("test") + " | " +
           common("reset_settings") + " | " + common("apply") + " | " + common("quit") + " | " +
           hint + " | " + items;
  }
};

const std::vector<std::string> kAll{"english", "french", "italian", "german", "spanish"};
const std::vector<std::string> kEnFr{"english", "french"};
const std::vector<std::string> kEn{"english"};
const std::vector<std::string> kEnGe{"english", "german"};

struct LoadRow {
  const char *oem, *code;
  NSInteger item;
  Language lang;
  const char *entry, *caption;  // %s: the catalogue's word for server
  const std::vector<std::string> &languages;
};

const LoadRow kLoadRows[] = {
    {"Quorvix", "en", 0, Language::En, "En", "Oskel %s", kAll},
    {"Quorvix", "fr", 1, Language::Fr, "Fr", "%s Oskel", kAll},
    {"Quorvix", "it", 2, Language::It, "It", "%s Oskel", kAll},
    {"Quorvix", "de", 3, Language::Ge, "Ge", "Oskel-%s", kAll},
    {"Quorvix", "es", 4, Language::Es, "Es", "%s Oskel", kAll},
    {"Quorvix", "xx", 0, Language::En, "En", "Oskel %s", kAll},
    {"Quorvix", "DE", 0, Language::En, "En", "Oskel %s", kAll},
    {"Zentavo", "en", 0, Language::En, "En", "Zentavo %s", kEnFr},
    {"Zentavo", "fr", 1, Language::Fr, "Fr", "%s Zentavo", kEnFr},
    {"Zentavo", "it", 1, Language::Fr, "Fr", "%s Zentavo", kEnFr},
    {"Zentavo", "de", 1, Language::Fr, "Fr", "%s Zentavo", kEnFr},
    {"Zentavo", "es", 1, Language::Fr, "Fr", "%s Zentavo", kEnFr},
    {"Zentavo", "EN", 1, Language::Fr, "Fr", "%s Zentavo", kEnFr},
    {"Fennrow", "en", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Fennrow", "fr", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Fennrow", "it", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Fennrow", "de", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Fennrow", "es", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Fennrow", "xx", 0, Language::En, "En", "Fennrow %s", kEn},
    {"Tollwick", "en", 0, Language::En, "En", "Tollwick %s", kEnGe},
    {"Tollwick", "fr", 1, Language::Ge, "Ge", "Tollwick-%s", kEnGe},
    {"Tollwick", "it", 1, Language::Ge, "Ge", "Tollwick-%s", kEnGe},
    {"Tollwick", "de", 1, Language::Ge, "Ge", "Tollwick-%s", kEnGe},
    {"Tollwick", "es", 1, Language::Ge, "Ge", "Tollwick-%s", kEnGe},
    {"Tollwick", "xx", 1, Language::Ge, "Ge", "Tollwick-%s", kEnGe},
};

std::string hintFor(Language lang) {
  constexpr const char *kHints[] = {"ip or hostname", "ip ou <nom de machine>", "ip o <Nome host>",
                                    "ip oder Hostname", "ip o <nombre de host>"};
  return kHints[static_cast<int>(lang)];
}

TEST_F(SettingsWindow, ConnectsEveryOutletOfItsInterfaceFile) {
  ServerWindowController *controller = openSettings();
  for (const char *name : kOutlets) {
    EXPECT_TRUE([controller valueForKey:[NSString stringWithUTF8String:name]] != nil) << name;
  }
  EXPECT_TRUE([[controller valueForKey:@"setting_label"] isKindOfClass:[NSTextFieldCell class]]);
}

TEST_F(SettingsWindow, LoadsWithTheItemsSelectionAndStringsOfItsEditionAndStoredLanguage) {
  for (const LoadRow &row : kLoadRows) {
    SCOPED_TRACE(std::string(row.oem) + " " + row.code);
    becomeEdition(row.oem);
    store(row.code, "192.0.2.10", "4000");
    ServerWindowController *controller = openSettings();
    EXPECT_EQ(app::utf8([[controller window] title]), app::editionWithOem(row.oem)->appName);
    EXPECT_EQ(selectedItem(controller), row.item);
    EXPECT_EQ(app::appStatics().lang, row.lang);
    std::string caption = row.caption;
    caption.replace(caption.find("%s"), 2, catalogueString(row.entry, "Common", "server"));
    EXPECT_EQ(strings(controller),
              catalogueStrings(row.entry, caption, hintFor(row.lang), row.languages));
    [[controller window] orderOut:nil];
  }
}

TEST_F(SettingsWindow, ShowsTheStoredServerAndPort) {
  store("en", "2001:db8::1", "70000");
  ServerWindowController *controller = openSettings();
  EXPECT_EQ(fieldText(controller, "servername"), "2001:db8::1");
  EXPECT_EQ(fieldText(controller, "port"), "70000");
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

TEST_F(SettingsWindow, LeavesTheLanguagesAloneUnderAnUnknownTitleButTranslates) {
  become("Zentavo", "Another Utility");
  app::appStatics().lang = Language::It;
  store("de", "mdm", "4000");
  ServerWindowController *controller = openSettings();
  EXPECT_EQ([outlet<NSPopUpButton>(controller, "selectLanguage") numberOfItems],
            static_cast<NSInteger>(i18n::kLanguageCount));
  EXPECT_EQ(selectedItem(controller), 0);
  EXPECT_EQ(app::appStatics().lang, Language::It);
  EXPECT_EQ(buttonTitle(controller, "Quit_button"), catalogueString("It", "Common", "quit"));
  EXPECT_EQ(fieldText(controller, "servername"), "mdm");
  EXPECT_EQ(fieldText(controller, "port"), "4000");
}

TEST_F(SettingsWindow, UsesTheOemItselfAsTheNameOfAnUnknownEdition) {
  become("Another", "Another Utility");
  store("en", "", "6000");
  ServerWindowController *controller = openSettings();
  EXPECT_EQ(strings(controller),
            catalogueStrings("En", "Another " + catalogueString("En", "Common", "server"),
                             "ip or hostname", kAll));
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
              (std::vector<std::string>{
                  "/bin/echo \"pw\" | /usr/bin/sudo -u \"alice\" -S /usr/bin/sudo -S "
                  "/usr/bin/sudo /usr/bin/profiles list |  grep com.zentavo.vardex.agent"}));
    EXPECT_EQ(app::appStatics().mdm_profile, installed);
    NSButton *box = outlet<NSButton>(controller, "MDM_profile");
    EXPECT_EQ([box state], installed ? NSControlStateValueOn : NSControlStateValueOff);
    EXPECT_FALSE([box isEnabled]);
    [box performClick:nil];
    EXPECT_EQ([box state], installed ? NSControlStateValueOn : NSControlStateValueOff);
  }
}

TEST_F(SettingsWindow, ShowsTheControlsThatItsInterfaceFileHides) {
  ServerWindowController *hidden = [[ServerWindowController alloc] init];
  NSArray *topLevelObjects = nil;
  ASSERT_TRUE([[NSBundle mainBundle] loadNibNamed:@"ServerWindowController"
                                            owner:hidden
                                  topLevelObjects:&topLevelObjects]);
  for (const char *name : kHiddenControls) {
    EXPECT_TRUE([outlet<NSView>(hidden, name) isHidden]) << name;
  }
  EXPECT_FALSE([[hidden valueForKey:@"window"] isVisible]);

  ServerWindowController *shown = openSettings();
  for (const char *name : kHiddenControls) {
    EXPECT_FALSE([outlet<NSView>(shown, name) isHidden]) << name;
  }
}

TEST_F(SettingsWindow, StartsWithoutResetAndWithTheFirstModeAndTest) {
  ServerWindowController *controller = openSettings();
  EXPECT_EQ([outlet<NSButton>(controller, "reset_settings") state], NSControlStateValueOff);
  EXPECT_EQ([outlet<NSPopUpButton>(controller, "mode") indexOfSelectedItem], 0);
  EXPECT_EQ([outlet<NSPopUpButton>(controller, "testChoice") indexOfSelectedItem], 0);
  EXPECT_EQ(itemTitles(controller, "mode"), "IP, Hostname");
  EXPECT_EQ(itemTitles(controller, "testChoice"), "Ping, TCP");
}

TEST_F(SettingsWindow, GivesApplyTheReturnKeyAndTheDefaultLook) {
  NSButton *apply = outlet<NSButton>(openSettings(), "Apply_button");
  EXPECT_EQ(app::utf8([apply keyEquivalent]), "\r");
  EXPECT_TRUE([apply isHighlighted]);
}

TEST_F(SettingsWindow, TranslatesItselfWhenTheLanguageChangesAndStoresNothing) {
  becomeEdition("Quorvix");
  store("en", "mdm", "4000");
  const std::string before = doubles::ScratchFolder::read(plist_);
  ServerWindowController *controller = openSettings();
  const std::size_t commands = recordingShell().commands.size();
  [outlet<NSPopUpButton>(controller, "selectLanguage") selectItemAtIndex:3];
  [controller languageAction:nil];
  EXPECT_EQ(app::appStatics().lang, Language::Ge);
  EXPECT_EQ(strings(controller),
            catalogueStrings("Ge", "Oskel-" + catalogueString("Ge", "Common", "server"),
                             "ip oder Hostname", kAll));
  EXPECT_EQ(recordingShell().commands.size(), commands);
  EXPECT_EQ(doubles::ScratchFolder::read(plist_), before);
}

TEST_F(SettingsWindow, TakesGermanFromTheSecondItemInTollwick) {
  becomeEdition("Tollwick");
  store("en", "", "6000");
  ServerWindowController *controller = openSettings();
  [outlet<NSPopUpButton>(controller, "selectLanguage") selectItemAtIndex:1];
  EXPECT_EQ([controller getLanguage], Language::Ge);
  [outlet<NSPopUpButton>(controller, "selectLanguage") selectItemAtIndex:-1];
  EXPECT_EQ([controller getLanguage], Language::En);
}

TEST_F(SettingsWindow, KeepsEveryStringWithoutAUsableCatalogueButTrimsAndSelects) {
  store("fr", "mdm", "4000");
  setCatalogue("not JSON");
  testing::internal::CaptureStderr();
  ServerWindowController *controller = openSettings();
  const std::string errors = testing::internal::GetCapturedStderr();
  // Once per translation; GNUstep may add words of its own.
  EXPECT_EQ(occurrences(errors, " error to get language: "), 2U) << errors;
  EXPECT_EQ(itemTitles(controller, "selectLanguage"), "English, French");
  EXPECT_EQ(selectedItem(controller), 1);
  EXPECT_EQ(app::appStatics().lang, Language::Fr);
  EXPECT_EQ(buttonTitle(controller, "Apply_button"), "Apply");
  EXPECT_EQ(buttonTitle(controller, "Quit_button"), "Quit");
  EXPECT_EQ(fieldText(controller, "port_label"), "Port:");
}

TEST_F(SettingsWindow, OffersItsLanguagesInTheirOrderWithoutAUsableCatalogue) {
  becomeEdition("Quorvix");
  setCatalogue("not JSON");
  testing::internal::CaptureStderr();
  ServerWindowController *controller = openSettings();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(itemTitles(controller, "selectLanguage"), "English, French, Italian, German, Spanish");
}

TEST_F(SettingsWindow, KeepsEveryStringWhenOneLanguageOfTheCatalogueLacksAKey) {
  store("fr", "mdm", "4000");
  ServerWindowController *controller = openSettings();
  const std::string before = strings(controller);
  std::string catalogue = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  const std::size_t italian = catalogue.find("\"It\"");
  catalogue.replace(catalogue.find("\"reset_settings\"", italian), 16, "\"reset_setting\"");
  setCatalogue(catalogue);
  [outlet<NSPopUpButton>(controller, "selectLanguage") selectItemAtIndex:0];
  testing::internal::CaptureStderr();
  [controller languageAction:nil];
  EXPECT_TRUE(testing::internal::GetCapturedStderr().ends_with(
      " error to get language: It.Common.reset_settings: missing\n"));
  EXPECT_EQ(strings(controller), before);
}

TEST_F(SettingsWindow, SelectsByTheCodeAloneWhateverWasSelectedBefore) {
  struct {
    const char *oem;
    SEL changeLanguage;
    std::vector<std::pair<NSInteger, Language>> choices;  // for the codes below
  } const rows[] = {
      {"Quorvix",
       @selector(changeLanguageOskel:),
       {{4, Language::Es}, {0, Language::En}, {3, Language::Ge}, {0, Language::En}}},
      {"Zentavo",
       @selector(changeLanguageZentavo:),
       {{1, Language::Fr}, {0, Language::En}, {1, Language::Fr}, {1, Language::Fr}}},
      {"Fennrow",
       @selector(changeLanguageFennrow:),
       {{0, Language::En}, {0, Language::En}, {0, Language::En}, {0, Language::En}}},
      {"Tollwick",
       @selector(changeLanguageTollwick:),
       {{1, Language::Ge}, {0, Language::En}, {1, Language::Ge}, {1, Language::Ge}}},
  };
  for (const auto &row : rows) {
    becomeEdition(row.oem);
    ServerWindowController *controller = openSettings();
    auto expected = row.choices.begin();
    for (NSString *code in @[ @"es", @"en", @"de", @"xx" ]) {
      [controller performSelector:row.changeLanguage withObject:code];
      EXPECT_EQ(selectedItem(controller), expected->first) << row.oem << app::utf8(code);
      EXPECT_EQ(app::appStatics().lang, expected->second) << row.oem << app::utf8(code);
      ++expected;
    }
  }
}

TEST_F(SettingsWindow, ReadsTheCatalogueOnEachTranslation) {
  store("en", "", "6000");
  ServerWindowController *controller = openSettings();
  std::string catalogue = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  catalogue.replace(catalogue.find("\"Apply\""), 7, "\"Applied\"");
  setCatalogue(catalogue);
  [controller translate];
  EXPECT_EQ(buttonTitle(controller, "Apply_button"), "Applied");
}

TEST_F(SettingsWindow, ShowsAnEmptyStringOfTheCatalogue) {
  store("en", "", "6000");
  std::string catalogue = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  const std::string quit = "\"quit\": \"" + catalogueString("En", "Common", "quit") + "\"";
  ASSERT_NE(catalogue.find(quit), std::string::npos);
  setCatalogue(catalogue.replace(catalogue.find(quit), quit.size(), "\"quit\": \"\""));
  EXPECT_EQ(buttonTitle(openSettings(), "Quit_button"), "");
}

TEST_F(SettingsWindow, SkipsTitlesOfItemsThatThePopUpLacks) {
  become("Quorvix", "Zentavo Configuration Utility");
  store("en", "", "6000");
  EXPECT_EQ(itemTitles(openSettings(), "selectLanguage"),
            catalogueString("En", "Language", "english") + ", " +
                catalogueString("En", "Language", "french"));
}

TEST_F(SettingsWindow, CannotBeClosed) {
  ServerWindowController *controller = openSettings();
  [[controller window] performClose:nil];
  EXPECT_TRUE([[controller window] isVisible]);
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

std::string notConnected(const char *name) {
  return std::string("fatal error: outlet ") + name + " is not connected";
}

TEST_F(SettingsWindowDeathTest, StopsTheProgramWhereTheLoadNeedsAMissingOutlet) {
  for (const char *name : kOutlets) {
    // Loaded twice in effect, so an edition that removes no items.
    becomeEdition("Quorvix");
    EXPECT_EXIT(
        {
          ServerWindowController *controller = openSettings();
          disconnect(controller, name);
          [controller windowDidLoad];
        },
        testing::KilledBySignal(SIGABRT), notConnected(name));
  }
}

TEST_F(SettingsWindowDeathTest, StopsTheProgramWhereAnActionNeedsAMissingOutlet) {
  struct {
    const char *outlet;
    SEL action;
  } const rows[] = {
      {"testStatus", @selector(TestAction:)},
      {"servername", @selector(TestAction:)},
      {"port", @selector(TestAction:)},
      {"mode", @selector(TestAction:)},
      {"testChoice", @selector(TestAction:)},
      {"servername", @selector(ApplyAction:)},
      {"port", @selector(ApplyAction:)},
      {"mode", @selector(ApplyAction:)},
      {"selectLanguage", @selector(ApplyAction:)},
      {"reset_settings", @selector(ApplyAction:)},
      {"selectLanguage", @selector(languageAction:)},
  };
  for (const auto &row : rows) {
    EXPECT_EXIT(
        {
          store("en", "192.0.2.10", "6000");
          ServerWindowController *controller = openSettings();
          disconnect(controller, row.outlet);
          [controller performSelector:row.action withObject:nil];
        },
        testing::KilledBySignal(SIGABRT), notConnected(row.outlet));
  }
}

}  // namespace
}  // namespace windowtest
