// Golden class-view texts of the example project: its sources parsed into one model, as
// `velmora dump` does, shown with each display form. VELMORA_UPDATE_GOLDEN=1 rewrites the
// expected files after a deliberate change; review the diff before committing it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "class_view_fixture.h"
#include "model/filters.h"
#include "support/text_buffer.h"

namespace velmora::testing {
namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

/// Every C++ and Pascal source of the example project, in name order.
std::vector<fs::path> ExampleSources() {
  std::vector<fs::path> files;
  for (const auto& entry :
       fs::directory_iterator(fs::path(VELMORA_SOURCE_DIR) / "examples" / "KilnLog")) {
    const std::string ext = entry.path().extension().string();
    if (ext == ".h" || ext == ".cpp" || ext == ".pas") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void LoadExample(TViewFixture& f) {
  for (const fs::path& path : ExampleSources()) {
    const std::string name = path.filename().string();
    TMemoryStream text(LoadSourceText(path.string()));
    ParseSourceText(LanguageOfFile(name), name, text, f.Project, TParseOptions{}, nullptr);
    auto file = std::make_unique<TFileDescription>(LanguageOfFile(name));
    file->Name = name;
    file->Directory = "examples/KilnLog/";
    f.Files.Add(std::move(file));
  }
}

struct GoldenCase {
  const char* name;  ///< also the expected file's name
  std::function<void(TViewFixture&)> setup;
  bool expand = true;
};

std::string Render(TViewFixture& f, bool expand) {
  f.Show("KilnLog");
  if (expand) f.View->ExpandAll();
  return RenderClassViewText(*f.View, TClassView::pgClasses) +
         RenderClassViewText(*f.View, TClassView::pgFiles);
}

TEST(ClassViewGolden, ExampleProject) {
  const GoldenCase cases[] = {
      {.name = "KilnLog", .setup = [](TViewFixture&) {}},
      {.name = "KilnLog_collapsed", .setup = [](TViewFixture&) {}, .expand = false},
      {.name = "KilnLog_short",
       .setup =
           [](TViewFixture& f) {
             f.Settings.SetShowMethArgs(false);
             f.Settings.SetShowMemTypes(false);
           }},
      {.name = "KilnLog_domains_filtered",
       .setup =
           [](TViewFixture& f) {
             f.Settings.DomainsBefore = true;
             TDomain* forms = f.Project.Domains.CreateDomain("Forms");
             for (int i = 0; i < f.Project.Count(); ++i)
               if (f.Project.Items(i)->Name.find("Form") != std::string::npos)
                 forms->AddClass(f.Project.Items(i));
             // Published members hidden with public ones; private fields hidden.
             f.Settings.MemberFilter().SetShown(mcMethods, TVisibility::Public, false);
             f.Settings.MemberFilter().SetShown(mcFields, TVisibility::Private, false);
           }},
  };
  const fs::path dir = fs::path(VELMORA_TEST_DATA) / "views" / "golden";
  const char* update = std::getenv("VELMORA_UPDATE_GOLDEN");
  for (const GoldenCase& c : cases) {
    TViewFixture f;
    LoadExample(f);
    c.setup(f);
    const std::string actual = Render(f, c.expand);
    const fs::path expected = dir / (std::string(c.name) + ".txt");
    if (update && std::string(update) == "1") {
      fs::create_directories(dir);
      std::ofstream(expected, std::ios::binary) << actual;
      continue;
    }
    ASSERT_TRUE(fs::exists(expected)) << c.name;
    EXPECT_EQ(actual, ReadText(expected)) << c.name;
  }
}

}  // namespace
}  // namespace velmora::testing
