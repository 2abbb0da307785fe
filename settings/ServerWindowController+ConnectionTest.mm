#import "settings/ServerWindowController.h"

#include "app/app_statics.h"
#include "app/diagnostics.h"
#include "app/ns_string.h"
#include "app/outlet.h"
#include "settings/connectivity.h"
#include "settings/validation.h"

namespace {

NSString *imageNameFor(i18n::TestResult result) {
  switch (result) {
    case i18n::TestResult::NotTested:
      return NSImageNameStatusNone;
    case i18n::TestResult::Reachable:
      return NSImageNameStatusAvailable;
    case i18n::TestResult::Unreachable:
      return NSImageNameStatusUnavailable;
  }
}

}  // namespace

@implementation ServerWindowController (ConnectionTest)

- (IBAction)TestAction:(id)sender {
  [self showResult:i18n::TestResult::NotTested];
  const std::string serverText = [self trimTextInField:OUTLET(servername)];
  const std::string portText = [self trimTextInField:OUTLET(port)];
  const settings::ValidationResult result =
      settings::validateServer(serverText, [self serverIsIPAddress]);
  if (result == settings::ValidationResult::ClearServer) [servername setStringValue:@""];
  if (result != settings::ValidationResult::Accept) return;

  // Required: the index is printed before the port is checked.
  const NSInteger kind = [OUTLET(testChoice) indexOfSelectedItem];
  app::printLine(std::to_string(kind));
  const bool testsPort = kind == 1;
  if (testsPort && settings::validatePort(portText) == settings::ValidationResult::ResetPort) {
    [port setStringValue:defaultPort];
    return;
  }
  const bool reachable = testsPort ? settings::acceptsConnection(serverText, portText)
                                   : settings::answersPing(serverText);
  [self showResult:reachable ? i18n::TestResult::Reachable : i18n::TestResult::Unreachable];
}

- (void)showResult:(i18n::TestResult)result {
  testResult = result;
  [OUTLET(testStatus) setImage:[NSImage imageNamed:imageNameFor(result)]];
  [self describeTestResult];
  // At once: the command blocks the window, which would go on showing the previous result.
  [testStatus display];
}

- (void)describeTestResult {
  NSString *description = app::nsString(i18n::testResultString(testResult, app::appStatics().lang));
  [OUTLET(testStatus) setToolTip:description];
  // No visible label describes the image.
  [testStatus setAccessibilityLabel:description];
}

@end
