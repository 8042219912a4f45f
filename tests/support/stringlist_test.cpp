#include "support/stringlist.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/exception.h"

namespace velmora {
namespace {

void* Id(intptr_t n) {
  return reinterpret_cast<void*>(n);
}

// "text+object" of every entry, e.g. "A2 b1".
std::string Contents(const TStringList& list) {
  std::string s;
  for (int i = 0; i < list.Count(); ++i) {
    if (i > 0) s += ' ';
    s += list.Strings(i) + std::to_string(reinterpret_cast<intptr_t>(list.Objects(i)));
  }
  return s;
}

TEST(StringListTest, AddUnderEveryRule) {
  struct Case {
    bool sorted;
    TDuplicates duplicates;
    bool caseSensitive;
    const char* contents;
    int throwsAt;  // 1-based add that raises, 0 none
  } cases[] = {
      {true, TDuplicates::Ignore, false, "A2 b1", 0},
      {true, TDuplicates::Accept, false, "A2 a3 a5 b1 B4", 0},
      {true, TDuplicates::Error, false, "A2 b1", 3},
      {true, TDuplicates::Ignore, true, "A2 B4 a3 b1", 0},
      {true, TDuplicates::Accept, true, "A2 B4 a3 a5 b1", 0},
      {true, TDuplicates::Error, true, "A2 B4 a3 b1", 5},
      {false, TDuplicates::Ignore, false, "b1 A2", 0},
      {false, TDuplicates::Accept, false, "b1 A2 a3 B4 a5", 0},
      {false, TDuplicates::Error, false, "b1 A2", 3},
      {false, TDuplicates::Ignore, true, "b1 A2 a3 B4", 0},
      {false, TDuplicates::Accept, true, "b1 A2 a3 B4 a5", 0},
      {false, TDuplicates::Error, true, "b1 A2 a3 B4", 5},
  };
  for (const Case& c : cases) {
    const std::string row = std::to_string(c.sorted) + "/" + std::to_string(int(c.duplicates)) +
                            "/" + std::to_string(c.caseSensitive);
    TStringList list(c.sorted, c.duplicates, c.caseSensitive);
    int thrownAt = 0;
    const char* words[] = {"b", "A", "a", "B", "a"};
    for (int i = 0; i < 5 && thrownAt == 0; ++i) {
      try {
        list.Add(words[i], Id(i + 1));
      } catch (const EStringListError&) {
        thrownAt = i + 1;
      }
    }
    EXPECT_EQ(Contents(list), c.contents) << row;
    EXPECT_EQ(thrownAt, c.throwsAt) << row;
  }
  // An ignored duplicate answers with the entry that is there.
  TStringList list(true, TDuplicates::Ignore, false);
  list.Add("x");
  list.Add("Y");
  EXPECT_EQ(list.Add("y"), 1);
}

TEST(StringListTest, FindGivesTheFirstEqualEntryOrTheInsertionPoint) {
  TStringList list(true, TDuplicates::Accept, false);
  for (const char* s : {"cherry", "Banana", "apple", "banana"}) list.Add(s);
  struct Case {
    const char* text;
    bool found;
    int index;
  } cases[] = {{"BANANA", true, 1}, {"b", false, 1},    {"zzz", false, 4},
               {"", false, 0},      {"apple", true, 0}, {"cherries", false, 3}};
  for (const Case& c : cases) {
    int index = -1;
    EXPECT_EQ(list.Find(c.text, index), c.found) << c.text;
    EXPECT_EQ(index, c.index) << c.text;
  }
  TStringList unsorted(false, TDuplicates::Accept, true);
  unsorted.Add("b");
  unsorted.Add("a");
  int index = -1;
  EXPECT_FALSE(unsorted.Find("A", index));
  EXPECT_EQ(index, 2);
  EXPECT_TRUE(unsorted.Find("a", index));
  EXPECT_EQ(index, 1);
}

TEST(StringListTest, SwitchingOrderRulesResorts) {
  TStringList list(false, TDuplicates::Accept, true);
  for (const char* s : {"b", "B", "a", "A"}) list.Add(s, Id(list.Count() + 1));
  list.SetSorted(true);
  EXPECT_EQ(Contents(list), "A4 B2 a3 b1");
  list.SetCaseSensitive(false);  // stable: equal names keep their order
  EXPECT_EQ(Contents(list), "A4 a3 B2 b1");
  list.Delete(10);
  list.Delete(0);
  EXPECT_EQ(Contents(list), "a3 B2 b1");
}

// Lists long enough to span many blocks, driven by random adds, in-order appends, found
// inserts and deletes, and checked entry by entry against a plain vector after each step:
// the blocks must never show.
TEST(StringListTest, LongListsBehaveLikeOneArray) {
  std::mt19937 random(11);
  for (const bool unsorted : {false, true}) {
    TStringList list(!unsorted, TDuplicates::Accept, false);
    std::vector<std::pair<std::string, intptr_t>> model;
    auto upper = [](std::string s) {
      for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      return s;
    };
    // Where a sorted add goes: after every entry that is not greater.
    auto sortedPlace = [&](const std::string& text) {
      size_t i = 0;
      while (i < model.size() && upper(model[i].first) <= upper(text)) ++i;
      return i;
    };
    intptr_t next = 1;
    std::string last = "a";
    for (int step = 0; step < 6000; ++step) {
      const unsigned op = random() % 10;
      if (op < 4) {  // a random name, often a repeat in another case
        std::string text = std::to_string(random() % 700);
        if (random() % 2)
          text = "n" + text;
        else
          text = "N" + text;
        const size_t at = unsorted ? model.size() : sortedPlace(text);
        list.Add(text, Id(next));
        model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), {text, next++});
      } else if (op < 7) {  // names that come in order, as a saved list loads
        last += static_cast<char>('a' + random() % 3);
        if (last.size() > 12) last = "z" + std::to_string(step);
        const size_t at = unsorted ? model.size() : sortedPlace(last);
        list.Add(last, Id(next));
        model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), {last, next++});
      } else if (op < 8 && !unsorted) {  // a find followed by an insert at the end of the run
        const std::string text = "n" + std::to_string(random() % 700);
        int index = 0;
        if (list.Find(text, index))
          while (index < list.Count() && list.Compare(list.Strings(index), text) == 0) ++index;
        ASSERT_EQ(static_cast<size_t>(index), sortedPlace(text)) << text;
        list.InsertFound(index, text, Id(next));
        model.insert(model.begin() + index, {text, next++});
      } else if (!model.empty()) {
        const int index = static_cast<int>(random() % model.size());
        list.Delete(index);
        model.erase(model.begin() + index);
      }
      ASSERT_EQ(list.Count(), static_cast<int>(model.size())) << "step " << step;
      if (step % 97 == 0 || step > 5900) {
        for (size_t i = 0; i < model.size(); ++i) {
          ASSERT_EQ(list.Strings(static_cast<int>(i)), model[i].first)
              << "step " << step << " at " << i;
          ASSERT_EQ(list.Objects(static_cast<int>(i)), Id(model[i].second)) << "step " << step;
        }
      }
    }
    EXPECT_GT(list.Count(), 1000);  // many blocks, whatever their size
  }
}

}  // namespace
}  // namespace velmora
