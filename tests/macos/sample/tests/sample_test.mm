#include <gtest/gtest.h>

#import "app/Sample.h"

TEST(Sample, TakesAPress) {
  Sample *sample = [[Sample alloc] init];
  [sample press:sample];
  EXPECT_EQ([sample retainCount], 1U);
}
