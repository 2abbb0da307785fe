#include "test_window.h"

@interface ItemCounter : NSObject {
 @public
  int count;
}
- (void)countItem:(id)sender;
@end

@implementation ItemCounter
- (void)countItem:(id)sender {
  (void)sender;
  ++count;
}
@end

@interface PopUpOwner : NSObject {
 @public
  NSPopUpButton *popUp;
}
@end

@implementation PopUpOwner
@end

namespace {

class PopUpButton : public WithWindow {
 protected:
  PopUpButton() {
    popUp_ = add<NSPopUpButton>(NSMakeRect(20, 100, 120, 25));
    [popUp_ addItemsWithTitles:[NSArray arrayWithObjects:@"first", @"second", @"third", nil]];
    counter_ = [[[ItemCounter alloc] init] autorelease];
    [popUp_ setTarget:counter_];
    [popUp_ setAction:@selector(countItem:)];
    show();
    // What the X server says about windows must not close the menu.
    while (nextEvent(NSAnyEventMask) != nil) continue;
  }

  /// A mouse event so many items below the closed pop-up's middle, so many seconds after the first.
  NSEvent *mouse(NSEventType type, int items = 0, NSTimeInterval time = 0) {
    return [NSEvent mouseEventWithType:type
                              location:NSMakePoint(60, 112 - 25 * items)
                         modifierFlags:0
                             timestamp:1000 + time
                          windowNumber:[window_ windowNumber]
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:1];
  }

  NSEvent *downArrow() {
    const unichar arrow = NSDownArrowFunctionKey;
    return keyDown([NSString stringWithCharacters:&arrow length:1]);
  }

  /// Presses the mouse on the pop-up; the events follow while the menu is open.
  void press(std::initializer_list<NSEvent *> events) {
    for (NSEvent *event : events) [NSApp postEvent:event atStart:NO];
    [popUp_ mouseDown:mouse(NSLeftMouseDown)];
    checkIsOver();
  }

  void checkIsOver() {
    EXPECT_FALSE([[[[popUp_ menu] menuRepresentation] window] isVisible]);
    EXPECT_TRUE(nextEvent(NSKeyDownMask | NSLeftMouseUpMask) == nil)
        << "the menu was closed before its last event";
  }

  NSPopUpButton *popUp_;
  ItemCounter *counter_;
};

TEST_F(PopUpButton, StaysOpenAfterAClick) {
  press({mouse(NSLeftMouseUp, 0, 0.1), downArrow(), keyDown(@"\r")});
  EXPECT_EQ([popUp_ indexOfSelectedItem], 1);
  EXPECT_EQ(counter_->count, 1);
}

TEST_F(PopUpButton, TakesTheItemThatIsClickedInTheOpenMenu) {
  press({mouse(NSLeftMouseUp, 0, 0.1), mouse(NSLeftMouseDown, 2, 1), mouse(NSLeftMouseUp, 2, 1.1)});
  EXPECT_EQ([popUp_ indexOfSelectedItem], 2);
  EXPECT_EQ(counter_->count, 1);
}

TEST_F(PopUpButton, TakesTheItemWhereAHeldButtonIsReleased) {
  press({mouse(NSLeftMouseDragged, 1, 0.1), mouse(NSLeftMouseUp, 1, 0.2)});
  EXPECT_EQ([popUp_ indexOfSelectedItem], 1) << "soon, but elsewhere";
  press({mouse(NSLeftMouseUp, 0, 2)});
  EXPECT_EQ([popUp_ indexOfSelectedItem], 1) << "late, on the same item";
  EXPECT_EQ(counter_->count, 2);
}

TEST_F(PopUpButton, KeepsItsItemWhenTheMouseIsPressedOrReleasedOutsideTheMenu) {
  press({mouse(NSLeftMouseDragged, 7, 0.1), mouse(NSLeftMouseUp, 7, 0.2)});
  press({mouse(NSLeftMouseUp, 0, 0.1), mouse(NSLeftMouseDown, 7, 1)});
  EXPECT_EQ([popUp_ indexOfSelectedItem], 0);
  EXPECT_EQ(counter_->count, 0);
}

TEST_F(PopUpButton, KeepsTheKeysOfItsOpenMenuFromTheWindow) {
  ItemCounter *pressed = [[[ItemCounter alloc] init] autorelease];
  for (NSString *equivalent : {@"\r", @"\e"}) {
    NSButton *button = add<NSButton>(NSMakeRect(20, 20, 90, 32));
    [button setKeyEquivalent:equivalent];
    [button setTarget:pressed];
    [button setAction:@selector(countItem:)];
  }
  for (NSString *last : {@"\r", @"\e"}) {
    [NSApp postEvent:downArrow() atStart:NO];
    [NSApp postEvent:keyDown(last) atStart:NO];
    [popUp_ keyDown:keyDown(@" ")];
    checkIsOver();
    EXPECT_EQ([popUp_ indexOfSelectedItem], 1);
  }
  EXPECT_EQ(counter_->count, 1) << "Escape takes nothing";
  EXPECT_EQ(pressed->count, 0);
}

TEST_F(PopUpButton, MarksItsItemWhenItIsOpenedForTheFirstTime) {
  NSMenuItem *item = static_cast<NSMenuItem *>([popUp_ selectedItem]);
  [item setChangesState:NO];  // as after an interface file
  press({mouse(NSLeftMouseUp, 0, 0.1), keyDown(@"\e")});
  EXPECT_TRUE([item changesState]);
}

// One from an interface file: until another item is chosen, GNUstep keeps an older, larger size.
TEST_F(PopUpButton, OpensItsMenuInItsOwnWidthFromTheFirstTime) {
  PopUpOwner *owner = [[[PopUpOwner alloc] init] autorelease];
  NSArray *objects = nil;
  ASSERT_TRUE([[NSBundle mainBundle] loadNibNamed:@"PopUpPanel"
                                            owner:owner
                                  topLevelObjects:&objects]);
  [objects retain];  // the last release of a window with a pop-up button crashes
  popUp_ = owner->popUp;
  [[popUp_ window] orderFront:nil];
  const auto openedWidth = [this] {
    press({mouse(NSLeftMouseUp, 0, 0.1), keyDown(@"\e")});
    return NSWidth([[[[popUp_ menu] menuRepresentation] window] frame]);
  };
  EXPECT_NEAR(openedWidth(), NSWidth([popUp_ frame]), 1);
  press({mouse(NSLeftMouseUp, 0, 0.1), downArrow(), keyDown(@"\r")});
  EXPECT_NEAR(openedWidth(), NSWidth([popUp_ frame]), 1) << "of another item";
  [[popUp_ window] orderOut:nil];
}

}  // namespace
