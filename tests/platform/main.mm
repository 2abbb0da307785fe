#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
  @autoreleasepool {
    testing::InitGoogleTest(&argc, argv);
    // A forked copy would share the parent's connection to the display.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
  }
}
