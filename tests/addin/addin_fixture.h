// A headless IDE that is the add-in's IDE for the length of a test.
#pragma once

#include "addin/tool_services.h"
#include "hosts/headless/headless_fixture.h"

namespace velmora::test {

struct TAddInHost {
  TAddInHost() { ToolServices = &ide; }
  ~TAddInHost() { ToolServices = nullptr; }
  TAddInHost(const TAddInHost&) = delete;
  TAddInHost& operator=(const TAddInHost&) = delete;

  /// Writes the file, opens it and puts `bufferText` into its buffer exactly as given
  /// (the form a test needs, lone LFs included). Returns the path.
  std::string OpenWithBuffer(const std::string& name, const std::string& bufferText) {
    const std::string file = dir.Write(name, "");
    EXPECT_TRUE(ide.OpenFile(file));
    ide.Buffer(file)->Text = bufferText;
    return file;
  }

  TScratch dir;
  THeadlessIDE ide;
};

}  // namespace velmora::test
