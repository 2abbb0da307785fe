#import <Foundation/Foundation.h>

#include "app/user_defaults.h"

namespace app {
namespace {

NSString *const kSwitchedOff[] = {
    // Command-line arguments are not documents: opening them would fail with an alert.
    @"NSTreatUnknownArgumentsAsOpen",
    // Names, passwords and addresses are taken as typed.
    @"NSAutomaticQuoteSubstitutionEnabled",
    @"NSAutomaticDashSubstitutionEnabled",
    @"NSAutomaticPeriodSubstitutionEnabled",
    @"NSAutomaticTextReplacementEnabled",
    @"NSAutomaticSpellingCorrectionEnabled",
    @"NSAutomaticCapitalizationEnabled",
};

}  // namespace

void registerUserDefaults() {
  @autoreleasepool {
    for (NSString *name : kSwitchedOff) {
      [[NSUserDefaults standardUserDefaults]
          registerDefaults:[NSDictionary dictionaryWithObject:@"NO" forKey:name]];
    }
  }
}

}  // namespace app
