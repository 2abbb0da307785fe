#pragma once

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#import "app/AppDelegate.h"
#include "app/app_statics.h"
#include "doubles/scratch_folder.h"
#import "settings/ServerWindowController.h"

/// What the window tests share: real controllers and interface files in real windows, with doubles
/// for the shell, the directory and the place of server.plist.
namespace windowtest {

/// Starts each test as a fresh program of the default edition, with the shipped catalogue and
/// without a server.plist.
class WindowTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Makes the program one of that edition.
  static void becomeEdition(const std::string &oem);
  static void become(const std::string &oem, const std::string &appName);

  /// What server.plist holds from now on.
  void store(const std::string &language, const std::string &server, const std::string &port);

  /// Replaces translate.json in the test program's own bundle until the end of the test.
  static void setCatalogue(const std::string &json);
  static void removeCatalogue();
  /// Takes every right to the file from this process; for a test that ends it.
  static void lockCatalogue();

  /// The delegate with its login window loaded, as `main` does it, before the launch.
  AppDelegate *loadLogin();
  /// The same, launched.
  AppDelegate *launch();
  /// The settings window, loaded and on screen.
  ServerWindowController *openSettings();

  doubles::ScratchFolder folder_;
  std::string plist_ = folder_.file("server.plist");

 private:
  NSAutoreleasePool *pool_ = nil;
};

/// What the delegate is given at launch.
NSNotification *launchNotification();

/// The control of that outlet; nil when it is not connected.
template <class Control>
Control *outlet(id owner, const char *name) {
  return static_cast<Control *>([owner valueForKey:[NSString stringWithUTF8String:name]]);
}

void disconnect(id owner, const char *name);

/// A string of the shipped catalogue, read without the program's own reader.
std::string catalogueString(const std::string &entry, const std::string &group,
                            const std::string &key);

std::string fieldText(id owner, const char *name);
std::string buttonTitle(id owner, const char *name);
std::string itemTitles(id owner, const char *popUp);
void type(id owner, const char *field, const std::string &text);

/// A key pressed in that window.
NSEvent *keyEvent(NSWindow *window, const std::string &key, NSUInteger modifiers = 0);

/// Presses the key as the keyboard would; whether the window did something with it.
bool press(NSWindow *window, const std::string &key, NSUInteger modifiers = 0);

/// Removes a resource from the test program's own bundle while it lives.
class MissingResource {
 public:
  explicit MissingResource(const std::string &name);
  ~MissingResource();
  MissingResource(const MissingResource &) = delete;
  MissingResource &operator=(const MissingResource &) = delete;

 private:
  std::string path_;
};

/// Runs the application's loop and sends the message from within it: ending a program works only
/// there. Returns when nothing ended it for some seconds.
void runAndSend(id target, SEL message, id argument);

}  // namespace windowtest
