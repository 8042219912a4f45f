#include "cli/cli_support.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace velmora::cli {
namespace {

namespace fs = std::filesystem;

std::string Slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

/// Forks a velmora in `dir` with its output in the two files; the child's process id.
pid_t Spawn(const std::string& program, const fs::path& dir, const std::vector<std::string>& args,
            const fs::path& out, const fs::path& err) {
  std::vector<std::string> argStrings = {program};
  argStrings.insert(argStrings.end(), args.begin(), args.end());
  // Beside the folder, so a snapshot of the folder sees only what the command wrote.
  const std::string home = dir.string() + ".home";
  fs::create_directories(home);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    std::vector<char*> argv;
    for (std::string& a : argStrings) argv.push_back(a.data());
    argv.push_back(nullptr);
    ::setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    ::unsetenv("BCB");
    if (::chdir(dir.c_str()) != 0) ::_exit(126);
    const int in = ::open("/dev/null", O_RDONLY);
    const int o = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int e = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(in, 0);
    ::dup2(o, 1);
    ::dup2(e, 2);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  return child;
}

/// Waits for the child up to `seconds`, killing it after; its exit code or -1.
int Reap(pid_t pid, int seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  int status = 0;
  for (;;) {
    const pid_t done = ::waitpid(pid, &status, WNOHANG);
    if (done == pid) break;
    if (std::chrono::steady_clock::now() > deadline) {
      ::kill(pid, SIGKILL);
      ::waitpid(pid, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TCliRun RunIn(const fs::path& dir, const std::vector<std::string>& args, int seconds) {
  return RunProgramIn(VELMORA_BINARY, dir, args, seconds);
}

TCliRun RunProgramIn(const std::string& program, const fs::path& dir,
                     const std::vector<std::string>& args, int seconds) {
  // The output files live beside the folder, so a snapshot of it sees only the command.
  const fs::path out = dir.string() + ".out", err = dir.string() + ".err";
  TCliRun run;
  run.ExitCode = Reap(Spawn(program, dir, args, out, err), seconds);
  run.Out = Slurp(out);
  run.Err = Slurp(err);
  fs::remove(out);
  fs::remove(err);
  return run;
}

void CopyExamples(const fs::path& dir) {
  const fs::path source = fs::path(VELMORA_SOURCE_DIR) / "examples";
  for (const auto& entry : fs::recursive_directory_iterator(source)) {
    const fs::path target = dir / fs::relative(entry.path(), source);
    if (entry.is_directory())
      fs::create_directories(target);
    else if (entry.path().extension() != ".cinfo")
      fs::copy_file(entry.path(), target, fs::copy_options::overwrite_existing);
  }
}

void TouchLater(const fs::path& file, int seconds) {
  fs::last_write_time(file, fs::file_time_type::clock::now() + std::chrono::seconds(seconds));
}

TBackgroundRun::TBackgroundRun(const fs::path& dir, const std::vector<std::string>& args)
    : out_(dir.string() + ".out"), err_(dir.string() + ".err") {
  pid_ = Spawn(VELMORA_BINARY, dir, args, out_, err_);
}

TBackgroundRun::~TBackgroundRun() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  fs::remove(out_);
  fs::remove(err_);
}

bool TBackgroundRun::WaitFor(const fs::path& file, const std::string& text,
                             std::chrono::milliseconds limit) const {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < deadline) {
    if (Slurp(file).find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return false;
}

bool TBackgroundRun::WaitForOut(const std::string& text, std::chrono::milliseconds limit) {
  return WaitFor(out_, text, limit);
}
bool TBackgroundRun::WaitForErr(const std::string& text, std::chrono::milliseconds limit) {
  return WaitFor(err_, text, limit);
}
std::string TBackgroundRun::Out() const {
  return Slurp(out_);
}
std::string TBackgroundRun::Err() const {
  return Slurp(err_);
}

int TBackgroundRun::Interrupt(int seconds) {
  ::kill(pid_, SIGINT);
  const int code = Reap(pid_, seconds);
  pid_ = -1;
  return code;
}

}  // namespace velmora::cli
