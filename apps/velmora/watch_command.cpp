// `velmora watch [PROJECT]`: opens the project like the main job, then stays running and
// parses each file of the model again when it changes on disk (inotify on the folders
// that hold them), printing one line per class added, changed or removed. Ctrl+C (or
// SIGTERM) ends it; the class information is saved on the way out.
#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <map>
#include <set>

#include "browse_common.h"
#include "class_view_output.h"
#include "command_line.h"
#include "commands.h"
#include "model/class_description.h"
#include "model/class_list.h"
#include "model/members.h"
#include "support/paths.h"

namespace velmora::app {
namespace {

/// What a class declares, positions left out: an edit above a class moves it without
/// changing it.
std::string Signature(const TClassDescription& cls) {
  std::string s = std::string(ClassKindText(cls.ClassKind)) + "|" + cls.UnitName + "|";
  for (int i = 0; i < cls.Ancestors.Count(); ++i) s += cls.Ancestors[i].AncestorName + ",";
  for (int i = 0; i < cls.Fields.Count(); ++i) {
    const TFieldDescription& f = *cls.Fields.Items(i);
    s += "|f" + std::to_string(static_cast<int>(f.Visibility)) + f.GetDeclaration(0);
  }
  for (int i = 0; i < cls.Methods.Count(); ++i) {
    const TMethodDescription& m = *cls.Methods.Items(i);
    s += "|m" + std::to_string(static_cast<int>(m.Visibility)) + std::to_string(m.Directives) +
         m.GetDisplayText(toShowArguments);
  }
  return s;
}

struct TClassEntry {
  std::string Signature;
  std::string Unit;
  int32_t Line = -1;
};
using TSnapshot = std::map<std::string, TClassEntry>;

void Collect(const TCommonClassList& list, const std::string& prefix, TSnapshot& out) {
  for (int i = 0; i < list.Count(); ++i) {
    const TClassDescription& cls = *list.Items(i);
    const std::string name = prefix + cls.Name;
    out[name] = {Signature(cls), cls.UnitName, cls.StartLine};
    if (const TCommonClassList* nested = cls.NestedClassesIfAny())
      Collect(*nested, name + ".", out);
  }
}

TSnapshot Snapshot(TBrowseSession& session) {
  TSnapshot snapshot;
  std::lock_guard lock(session.Classes().Lock);
  Collect(session.Classes(), "", snapshot);
  return snapshot;
}

void Report(const TSnapshot& before, const TSnapshot& after, const TPathNamer& paths) {
  auto line = [&](const char* what, const std::string& name, const TClassEntry& entry) {
    std::string text = std::string(what) + " class " + name + "  " + paths.Relative(entry.Unit);
    if (entry.Line > 0) text += ":" + std::to_string(entry.Line);
    std::printf("%s\n", text.c_str());
  };
  for (const auto& [name, entry] : after) {
    auto old = before.find(name);
    if (old == before.end())
      line("added", name, entry);
    else if (old->second.Signature != entry.Signature)
      line("changed", name, entry);
  }
  for (const auto& [name, entry] : before)
    if (!after.count(name)) std::printf("removed class %s\n", name.c_str());
  std::fflush(stdout);
}

class TWatcher {
 public:
  TWatcher() : fd_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    if (fd_ < 0) throw TCommandError("cannot watch files: inotify is not available");
  }
  ~TWatcher() { ::close(fd_); }
  TWatcher(const TWatcher&) = delete;
  TWatcher& operator=(const TWatcher&) = delete;

  int Fd() const { return fd_; }
  /// Watches the folders of `files` not watched yet.
  void Watch(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
      std::string dir(ExtractFilePath(file));
      if (dir.size() > 1 && dir.back() == '/') dir.pop_back();
      if (folders_.count(dir)) continue;
      const int wd = ::inotify_add_watch(
          fd_, dir.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_DELETE | IN_MOVED_FROM);
      if (wd < 0) {
        PrintMessage("cannot watch " + dir);
        continue;
      }
      folders_[dir] = wd;
      byWatch_[wd] = dir;
    }
  }
  /// The paths of the changes waiting; empty when none.
  std::set<std::string> Drain() {
    std::set<std::string> changed;
    alignas(inotify_event) char buffer[16384];
    for (;;) {
      const ssize_t n = ::read(fd_, buffer, sizeof buffer);
      if (n <= 0) break;
      for (ssize_t at = 0; at < n;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
        if (event->len > 0 && byWatch_.count(event->wd))
          changed.insert(byWatch_[event->wd] + "/" + event->name);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
    return changed;
  }

 private:
  int fd_;
  std::map<std::string, int> folders_;
  std::map<int, std::string> byWatch_;
};

void RunWatch(const std::string& project) {
  // Ctrl+C arrives through a descriptor, so the loop ends between two parses and saves.
  // Blocked before the session starts its parse threads, which inherit the mask: one of
  // them would otherwise take the signal and end the process unsaved.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  const int signalFd = ::signalfd(-1, &signals, SFD_CLOEXEC);
  auto session = OpenBrowseSession(project);
  TWatcher watcher;
  watcher.Watch(session->WatchedFiles());
  PrintMessage("watching " + std::to_string(session->WatchedFiles().size()) +
               " files; Ctrl+C ends");
  const TPathNamer paths(*session);
  bool changedSinceSave = false;
  for (;;) {
    pollfd fds[2] = {{signalFd, POLLIN, 0}, {watcher.Fd(), POLLIN, 0}};
    if (::poll(fds, 2, -1) < 0) continue;
    if (fds[0].revents & POLLIN) break;
    // An editor's save is often several events (write, rename); let them settle.
    ::poll(nullptr, 0, 50);
    const std::set<std::string> changed = watcher.Drain();
    const TSnapshot before = Snapshot(*session);
    bool any = false;
    for (const std::string& file : changed) any = session->Reparse(file) || any;
    if (!any) continue;
    changedSinceSave = true;
    Report(before, Snapshot(*session), paths);
    watcher.Watch(session->WatchedFiles());
  }
  ::close(signalFd);
  if (changedSinceSave && !session->Save()) throw TCommandError("");
}

}  // namespace

void AddWatchCommand(CLI::App& app) {
  auto project = std::make_shared<std::string>();
  auto* cmd = app.add_subcommand("watch",
                                 "Stay running: parse files again as they change and print each "
                                 "class added, changed or removed");
  cmd->add_option("PROJECT", *project, "Project file or folder");
  cmd->callback([project] { RunWatch(*project); });
}

}  // namespace velmora::app
