#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

@interface PanelOwner : NSObject {
 @public
  NSTextField *label;
  NSWindow *panel;
}
@end

@implementation PanelOwner
@end

namespace {

TEST(Nib, GivesItsTopLevelObjectsAndConnectsTheOwner) {
  [NSApplication sharedApplication];
  PanelOwner *owner = [[[PanelOwner alloc] init] autorelease];
  NSArray *objects = nil;
  ASSERT_TRUE([[NSBundle mainBundle] loadNibNamed:@"Panel" owner:owner topLevelObjects:&objects]);
  ASSERT_TRUE(owner->panel != nil);
  EXPECT_TRUE([objects containsObject:owner->panel]);
  EXPECT_FALSE([owner->panel isVisible]);
}

TEST(Nib, MayBeMissing) {
  [NSApplication sharedApplication];
  NSArray *objects = nil;
  EXPECT_FALSE([[NSBundle mainBundle] loadNibNamed:@"Absent" owner:nil topLevelObjects:&objects]);
  EXPECT_TRUE(objects == nil);
}

TEST(Nib, GivesTheSystemFontItsSize) {
  [NSApplication sharedApplication];
  for (int i = 0; i < 20; ++i) {
    PanelOwner *owner = [[[PanelOwner alloc] init] autorelease];
    [[NSBundle mainBundle] loadNibNamed:@"Panel" owner:owner topLevelObjects:nil];
    EXPECT_EQ([[owner->label font] pointSize], 13);
  }
}

}  // namespace
