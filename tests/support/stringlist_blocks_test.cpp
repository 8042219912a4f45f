// The string list keeps its entries in blocks; these runs check it against a plain vector
// through many random insertions and deletions, across block splits and removals.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/ansi.h"
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

}  // namespace
}  // namespace velmora
