#include "support/check.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(CheckTest, AHeldRuleGoesOnQuietly) {
  int evaluated = 0;
  VELMORA_DCHECK(++evaluated == 1, "counted once");
#ifdef NDEBUG
  EXPECT_EQ(evaluated, 0);  // release builds do not evaluate the condition
#else
  EXPECT_EQ(evaluated, 1);
#endif
}

#ifndef NDEBUG
TEST(CheckDeathTest, ABrokenRuleStopsWithItsExplanation) {
  const int depth = -1;
  EXPECT_DEATH(VELMORA_DCHECK(depth >= 0, "the depth never falls below zero"),
               "check failed: depth >= 0 \\(the depth never falls below zero\\)");
}
#endif

}  // namespace
}  // namespace velmora
