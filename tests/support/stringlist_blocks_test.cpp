// The string list keeps its entries in blocks; these runs check it against a plain vector
// through many random insertions and deletions, across block splits and removals.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/ansi.h"
#include "support/exception.h"
#include "support/stringlist.h"

namespace velmora {
namespace {

TEST(StringListBlocksTest, AgreesWithAPlainVectorThroughRandomEdits) {
  struct Mode {
    bool sorted;
    TDuplicates duplicates;
  } modes[] = {
      {true, TDuplicates::Accept}, {true, TDuplicates::Ignore}, {false, TDuplicates::Accept}};
  for (const Mode& mode : modes) {
    std::mt19937 random(7);
    TStringList list(mode.sorted, mode.duplicates, false);
    std::vector<std::pair<std::string, intptr_t>> expected;
    for (int step = 0; step < 6000; ++step) {
      const std::string name = "n" + std::to_string(random() % 900);
      const intptr_t tag = step;
      if (random() % 4 == 0 && !expected.empty()) {
        const int at = static_cast<int>(random() % expected.size());
        list.Delete(at);
        expected.erase(expected.begin() + at);
        continue;
      }
      if (!mode.sorted) {
        const int at = static_cast<int>(random() % (expected.size() + 1));
        list.Insert(at, name, reinterpret_cast<void*>(tag));
        expected.insert(expected.begin() + at, {name, tag});
        continue;
      }
      auto place = std::upper_bound(
          expected.begin(), expected.end(), name,
          [](const std::string& s, const auto& e) { return CompareText(s, e.first) < 0; });
      const bool present = place != expected.begin() && CompareText((place - 1)->first, name) == 0;
      const int index = list.Add(name, reinterpret_cast<void*>(tag));
      if (present && mode.duplicates == TDuplicates::Ignore) {
        EXPECT_EQ(list.Strings(index), name);
        continue;
      }
      EXPECT_EQ(index, place - expected.begin()) << "step " << step;
      expected.insert(place, {name, tag});
    }
    ASSERT_EQ(list.Count(), static_cast<int>(expected.size()));
    for (int i = 0; i < list.Count(); ++i) {
      EXPECT_EQ(list.Strings(i), expected[i].first) << i;
      EXPECT_EQ(reinterpret_cast<intptr_t>(list.Objects(i)), expected[i].second) << i;
    }
    if (mode.sorted) {
      for (const auto& [name, tag] : expected) {
        int index;
        ASSERT_TRUE(list.Find(name, index)) << name;
        EXPECT_EQ(list.Strings(index), name);
        EXPECT_TRUE(index == 0 || CompareText(list.Strings(index - 1), name) < 0) << name;
      }
    }
  }
}

// AddMany must leave a list exactly as Add called for each entry in turn would: the same
// entries in the same order, the same index afterwards, the same error.
TEST(StringListBlocksTest, AddManyAgreesWithAddInTurn) {
  struct Case {
    const char* name;
    bool sorted;
    TDuplicates duplicates;
    int existing;  // entries already in the list, spread over many blocks when large
    int added;     // entries added at once, in order or not
    bool inOrder;
  } cases[] = {
      {.name = "empty list, accept",
       .sorted = true,
       .duplicates = TDuplicates::Accept,
       .existing = 0,
       .added = 500,
       .inOrder = true},
      {.name = "large list, accept, in order",
       .sorted = true,
       .duplicates = TDuplicates::Accept,
       .existing = 5000,
       .added = 800,
       .inOrder = true},
      {.name = "large list, accept, any order",
       .sorted = true,
       .duplicates = TDuplicates::Accept,
       .existing = 5000,
       .added = 800,
       .inOrder = false},
      {.name = "ignore",
       .sorted = true,
       .duplicates = TDuplicates::Ignore,
       .existing = 3000,
       .added = 700,
       .inOrder = false},
      {.name = "all past the end",
       .sorted = true,
       .duplicates = TDuplicates::Accept,
       .existing = 200,
       .added = 300,
       .inOrder = true},
      {.name = "unsorted",
       .sorted = false,
       .duplicates = TDuplicates::Accept,
       .existing = 100,
       .added = 100,
       .inOrder = false},
  };
  for (const Case& c : cases) {
    std::mt19937 random(11);
    TStringList one(c.sorted, c.duplicates, false), many(c.sorted, c.duplicates, false);
    for (int i = 0; i < c.existing; ++i) {
      const std::string name = "n" + std::to_string(random() % 2000);
      one.Add(name, reinterpret_cast<void*>(intptr_t{i}));
      many.Add(name, reinterpret_cast<void*>(intptr_t{i}));
    }
    std::vector<std::string> names;
    for (int i = 0; i < c.added; ++i)
      // "z..." names sort after every existing one.
      names.push_back(std::string(c.existing == 200 ? "z" : "N") + std::to_string(random() % 2500));
    if (c.inOrder)
      std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return CompareText(a, b) < 0;
      });
    std::vector<std::pair<std::string_view, void*>> entries;
    for (size_t i = 0; i < names.size(); ++i) {
      one.Add(names[i], reinterpret_cast<void*>(intptr_t{100000} + static_cast<intptr_t>(i)));
      entries.emplace_back(names[i],
                           reinterpret_cast<void*>(intptr_t{100000} + static_cast<intptr_t>(i)));
    }
    many.AddMany(entries);
    ASSERT_EQ(many.Count(), one.Count()) << c.name;
    for (int i = 0; i < one.Count(); ++i) {
      ASSERT_EQ(many.Strings(i), one.Strings(i)) << c.name << " at " << i;
      ASSERT_EQ(many.Objects(i), one.Objects(i)) << c.name << " at " << i;
    }
    // The starts were counted again: the indexes found and an edit afterwards agree.
    for (const std::string& name : names)
      EXPECT_EQ(many.IndexOf(name), one.IndexOf(name)) << c.name;
    many.Delete(many.Count() / 2);
    one.Delete(one.Count() / 2);
    EXPECT_EQ(many.Add("n1", nullptr), one.Add("n1", nullptr)) << c.name;
  }
}

TEST(StringListBlocksTest, AddManyRaisesOnAForbiddenDuplicateAfterAddingWhatCameBefore) {
  TStringList list(true, TDuplicates::Error, false);
  for (int i = 0; i < 300; ++i) list.Add("a" + std::to_string(i));
  EXPECT_THROW(list.AddMany({{"b1", nullptr}, {"b2", nullptr}, {"a7", nullptr}, {"b3", nullptr}}),
               EStringListError);
  EXPECT_EQ(list.Count(), 302);
  EXPECT_EQ(list.IndexOf("b2"), 301);
  EXPECT_EQ(list.IndexOf("b3"), -1);
}

}  // namespace
}  // namespace velmora
