#include "parsing/ilist.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(IListTest, GrowsInSteps_OfThousandTwentyFour_OneSlotEarly) {
  TIList list;
  EXPECT_EQ(list.Add(7), 0);
  EXPECT_EQ(list.Capacity(), 1024);
  for (int i = 1; i < 1023; ++i) list.Add(i);
  EXPECT_EQ(list.Capacity(), 1024);  // 1023 items: Count + 1 reaches Capacity only now
  EXPECT_EQ(list.Add(1023), 1023);
  EXPECT_EQ(list.Capacity(), 2048);
  EXPECT_EQ(list.Count(), 1024);
  EXPECT_EQ(list.Get(0), 7);
  EXPECT_EQ(list.Get(1023), 1023);
}

TEST(IListTest, CapacityAndCountChanges) {
  TIList list;
  for (int i = 0; i < 10; ++i) list.Add(i * 10);
  list.SetCapacity(4);  // cuts the count
  EXPECT_EQ(list.Capacity(), 4);
  EXPECT_EQ(list.Count(), 4);
  EXPECT_EQ(list.Get(3), 30);
  list.SetCount(6);  // grows the capacity to fit
  EXPECT_EQ(list.Capacity(), 6);
  EXPECT_EQ(list.Count(), 6);
  list.SetCount(2);
  EXPECT_EQ(list.Capacity(), 6);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 0);
  EXPECT_EQ(list.Items(), nullptr);
}

TEST(IListTest, FindIntervalLocatesTheRunHoldingAValue) {
  TIList list;
  for (int v : {0, 3, 4, 10}) list.Add(v);
  struct Case {
    int value, index;
  } cases[] = {{-1, -1}, {0, 0}, {2, 0}, {3, 1}, {4, 2}, {9, 2}, {10, 3}, {11, -1}};
  for (auto c : cases) EXPECT_EQ(list.FindInterval(c.value), c.index) << c.value;

  TIList empty;
  EXPECT_EQ(empty.FindInterval(0), -1);
  TIList single;
  single.Add(5);
  EXPECT_EQ(single.FindInterval(5), 0);
  EXPECT_EQ(single.FindInterval(4), -1);
  EXPECT_EQ(single.FindInterval(6), -1);
}

}  // namespace
}  // namespace velmora
