#include "addin/vl_manager.h"

#include "addin/idle_thread.h"
#include "addin/model_view_listener.h"
#include "addin/vl_thread_list.h"
#include "model/class_list.h"
#include "model/files.h"

namespace velmora {

// Bodies that do nothing yet: the jobs come with the parse queue.
struct TVLManager::TState {
  TClasslist projectClasses, externalClasses;
  TFilesList projectFiles, externalFiles;
  TVLThreadList jobs{{}, {}};
  TVLManagerStats stats;
  std::string projectFile, classInfoFile;
  bool discard = false;
};

namespace {
TVLManager* instance = nullptr;
}

TVLManager::TVLManager(TIToolServices& /*ide*/, TVLManagerOptions /*options*/)
    : s_(std::make_unique<TState>()) {
  instance = this;
}
TVLManager::~TVLManager() {
  if (instance == this) instance = nullptr;
}
TVLManager* TVLManager::Instance() {
  return instance;
}
void TVLManager::StartUp(const std::string&) {}
void TVLManager::ProjectChanged(const std::string&, const std::vector<std::string>&) {}
void TVLManager::ProjectClosed() {}
void TVLManager::ProjectRenamed(const std::string&) {}
void TVLManager::FileAdded(const std::string&) {}
void TVLManager::FileRemoved(const std::string&, bool) {}
void TVLManager::FileSaved(const std::string&) {}
void TVLManager::FileRenamed(const std::string&, const std::string&) {}
void TVLManager::Command(TVLMenuCommand) {}
TClasslist& TVLManager::ProjectClasses() {
  return s_->projectClasses;
}
TFilesList& TVLManager::ProjectFiles() {
  return s_->projectFiles;
}
TClasslist& TVLManager::ExternalClasses() {
  return s_->externalClasses;
}
TFilesList& TVLManager::ExternalFiles() {
  return s_->externalFiles;
}
const std::string& TVLManager::ProjectFile() const {
  return s_->projectFile;
}
void TVLManager::AddView(TModelViewListener*) {}
void TVLManager::RemoveView(TModelViewListener*) {}
void TVLManager::SetProjectIncludePath(const std::string&, std::vector<std::string>) {}
std::vector<std::string> TVLManager::IncludePath() const {
  return {};
}
void TVLManager::CancelAllJobs() {}
void TVLManager::SetDiscardResults(bool discard) {
  s_->discard = discard;
}
bool TVLManager::DiscardResults() const {
  return s_->discard;
}
TVLThreadList& TVLManager::Jobs() {
  return s_->jobs;
}
bool TVLManager::Idle() const {
  return true;
}
void TVLManager::WaitUntilIdle() {}
bool TVLManager::SaveClassInfo() {
  return false;
}
const std::string& TVLManager::ClassInfoFile() const {
  return s_->classInfoFile;
}
void TVLManager::SetProgressHandler(TProgressHandler) {}
const TVLManagerStats& TVLManager::Stats() const {
  return s_->stats;
}
TIdleThread* TVLManager::IdleThread() {
  return nullptr;
}

void InstallVLManager(TVLManagerOptions /*options*/) {}

}  // namespace velmora
