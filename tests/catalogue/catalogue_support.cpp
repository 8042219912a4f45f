#include "catalogue/catalogue_support.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

extern char** environ;

namespace velmora::catalogue {

namespace fs = std::filesystem;

TRunResult RunVelmora(const std::vector<std::string>& args, const std::vector<std::string>& env,
                      int seconds) {
  std::vector<std::string> argStrings = {VELMORA_BINARY};
  argStrings.insert(argStrings.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& a : argStrings) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::vector<std::string> envStrings;
  for (char** e = environ; *e; ++e) envStrings.emplace_back(*e);
  envStrings.insert(envStrings.end(), env.begin(), env.end());
  std::vector<char*> envp;
  for (std::string& e : envStrings) envp.push_back(e.data());
  envp.push_back(nullptr);

  int out[2], err[2];
  if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0)
    throw std::runtime_error("pipe failed");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    ::dup2(out[1], 1);
    ::dup2(err[1], 2);
    const int null = ::open("/dev/null", O_RDONLY);
    ::dup2(null, 0);
    ::execve(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  ::close(out[1]);
  ::close(err[1]);

  TRunResult result;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
  std::string* sinks[2] = {&result.Out, &result.Err};
  int open = 2;
  while (open > 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      result.TimedOut = true;
      ::kill(child, SIGKILL);
      break;
    }
    if (::poll(fds, 2, static_cast<int>(left.count())) < 0) continue;
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
      char buffer[1 << 16];
      const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
      if (n > 0) {
        sinks[i]->append(buffer, static_cast<size_t>(n));
      } else {
        ::close(fds[i].fd);
        fds[i].fd = -1;
        --open;
      }
    }
  }
  for (pollfd& f : fds)
    if (f.fd >= 0) ::close(f.fd);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status)) result.ExitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.Signal = WTERMSIG(status);
  return result;
}

TScratchDir::TScratchDir() {
  std::string pattern = (fs::temp_directory_path() / "velmora-catalogue-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TScratchDir::~TScratchDir() {
  std::error_code ec;
  fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ec);
  fs::remove_all(path_, ec);
}

std::map<std::string, std::string> Snapshot(const fs::path& dir) {
  std::map<std::string, std::string> entries;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path& p = it->path();
    const std::string name = fs::relative(p, dir).string();
    if (it->is_symlink())
      entries[name] = "link to " + fs::read_symlink(p).string();
    else if (it->is_regular_file())
      entries[name] = ReadFile(p);
    else
      entries[name] = it->is_directory() ? "folder" : "special file";
  }
  return entries;
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string Expand(std::string text, const fs::path& dir) {
  for (size_t at; (at = text.find("{dir}")) != std::string::npos;)
    text.replace(at, 5, dir.string());
  return text;
}

}  // namespace velmora::catalogue
