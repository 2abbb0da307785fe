#import "window/window_test.h"

#include <nlohmann/json.hpp>

#include "agent/server_plist.h"
#include "app/edition.h"
#include "app/ns_string.h"
#include "doubles/fake_directory.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"

#include <sys/stat.h>
#include <unistd.h>

namespace windowtest {
namespace {

constexpr uid_t kNobody = 65534;

std::string resourcePath(const std::string &name) {
  return app::utf8([[NSBundle mainBundle] resourcePath]) + "/" + name;
}

std::string cataloguePath() { return resourcePath("translate.json"); }

}  // namespace

void WindowTest::SetUp() {
  pool_ = [[NSAutoreleasePool alloc] init];
  app::appStatics() = {};
  becomeEdition("Zentavo");
  doubles::resetShell();
  doubles::fakeDirectory() = {};
  doubles::setServerPlistPath(plist_);
  setCatalogue(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
}

void WindowTest::TearDown() {
  for (NSWindow *window in [[[NSApp windows] copy] autorelease]) [window orderOut:nil];
  setCatalogue(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
  [pool_ drain];
}

void WindowTest::becomeEdition(const std::string &oem) {
  become(oem, std::string(app::editionWithOem(oem)->appName));
}

void WindowTest::become(const std::string &oem, const std::string &appName) {
  app::appStatics().oem = oem;
  app::appStatics().appName = appName;
}

void WindowTest::store(const std::string &language, const std::string &server,
                       const std::string &port) {
  folder_.write("server.plist",
                agent::serverPlistText({.server = server, .port = port, .lang = language}));
}

void WindowTest::setCatalogue(const std::string &json) {
  removeCatalogue();
  std::ofstream(cataloguePath(), std::ios::binary) << json;
}

void WindowTest::removeCatalogue() { std::filesystem::remove(cataloguePath()); }

void WindowTest::lockCatalogue() {
  ASSERT_EQ(::chmod(cataloguePath().c_str(), 0), 0);
  // Root may read it all the same.
  if (::geteuid() == 0) ASSERT_EQ(::setuid(kNobody), 0);
}

AppDelegate *WindowTest::loadLogin() {
  AppDelegate *delegate = [[AppDelegate alloc] init];
  [NSApp setDelegate:delegate];
  NSArray *topLevelObjects = nil;
  EXPECT_TRUE([[NSBundle mainBundle] loadNibNamed:@"MainMenu"
                                            owner:delegate
                                  topLevelObjects:&topLevelObjects]);
  [topLevelObjects retain];
  return delegate;
}

NSNotification *launchNotification() {
  return [NSNotification notificationWithName:NSApplicationDidFinishLaunchingNotification
                                       object:NSApp];
}

AppDelegate *WindowTest::launch() {
  AppDelegate *delegate = loadLogin();
  [delegate applicationDidFinishLaunching:launchNotification()];
  return delegate;
}

ServerWindowController *WindowTest::openSettings() {
  ServerWindowController *controller = [[ServerWindowController alloc] init];
  [controller showWindow:nil];
  return controller;
}

MissingResource::MissingResource(const std::string &name) : path_(resourcePath(name)) {
  // A test that ends the process runs once more in a copy of it, for which the file is gone
  // already.
  std::error_code ignored;
  std::filesystem::rename(path_, path_ + ".removed", ignored);
}

MissingResource::~MissingResource() { std::filesystem::rename(path_ + ".removed", path_); }

void disconnect(id owner, const char *name) {
  [owner setValue:nil forKey:[NSString stringWithUTF8String:name]];
}

std::string catalogueString(const std::string &entry, const std::string &group,
                            const std::string &key) {
  static const auto catalogue =
      nlohmann::json::parse(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
  return catalogue.at(entry).at(group).at(key).get<std::string>();
}

std::string fieldText(id owner, const char *name) {
  return app::utf8([outlet<NSTextField>(owner, name) stringValue]);
}

std::string buttonTitle(id owner, const char *name) {
  return app::utf8([outlet<NSButton>(owner, name) title]);
}

std::string itemTitles(id owner, const char *popUp) {
  return app::utf8(
      [[outlet<NSPopUpButton>(owner, popUp) itemTitles] componentsJoinedByString:@", "]);
}

void type(id owner, const char *field, const std::string &text) {
  [outlet<NSTextField>(owner, field) setStringValue:app::nsString(text)];
}

NSEvent *keyEvent(NSWindow *window, const std::string &key, NSUInteger modifiers) {
  return [NSEvent keyEventWithType:NSEventTypeKeyDown
                          location:NSZeroPoint
                     modifierFlags:modifiers
                         timestamp:0
                      windowNumber:[window windowNumber]
                           context:nil
                        characters:app::nsString(key)
       charactersIgnoringModifiers:app::nsString(key)
                         isARepeat:NO
                           keyCode:0];
}

bool press(NSWindow *window, const std::string &key, NSUInteger modifiers) {
  return [window performKeyEquivalent:keyEvent(window, key, modifiers)];
}

void runAndSend(id target, SEL message, id argument) {
  [target performSelector:message withObject:argument afterDelay:0];
  [NSApp performSelector:@selector(stop:) withObject:nil afterDelay:5];
  [NSApp run];
}

}  // namespace windowtest

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
  testing::InitGoogleTest(&argc, argv);
  // A forked copy would share this process's connection to the screen.
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  const int result = RUN_ALL_TESTS();
  [pool drain];
  return result;
}
