#include "support/TestSupport.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;  // NOLINT: the process environment, passed on to children

namespace ledgeon::testing {

namespace {

std::string drain(int fd) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t n = read(fd, buffer.data(), buffer.size());
    if (n <= 0) break;
    text.append(buffer.data(), static_cast<size_t>(n));
  }
  close(fd);
  return text;
}

}  // namespace

TempFolder::TempFolder() {
  static std::atomic<unsigned> counter{0};
  path_ = std::filesystem::temp_directory_path() /
          ("ledgeon-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

CliResult runCli(const std::vector<std::string>& arguments, const std::filesystem::path& home,
                 const std::string& input) {
  std::array<int, 2> in{}, out{}, err{};
  if (pipe(in.data()) != 0 || pipe(out.data()) != 0 || pipe(err.data()) != 0) {
    throw std::runtime_error("pipe failed");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], 0);
  posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  posix_spawn_file_actions_adddup2(&actions, err[1], 2);
  for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) {
    posix_spawn_file_actions_addclose(&actions, fd);
  }

  std::vector<std::string> argvStrings{LEDGEON_CLI_PATH};
  argvStrings.insert(argvStrings.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (auto& a : argvStrings) argv.push_back(a.data());
  argv.push_back(nullptr);

  std::vector<std::string> envStrings{"LEDGEON_HOME=" + home.string()};
  for (char** e = environ; *e != nullptr; ++e) {
    if (std::string_view(*e).starts_with("LEDGEON_HOME=")) continue;
    envStrings.emplace_back(*e);
  }
  std::vector<char*> envp;
  for (auto& e : envStrings) envp.push_back(e.data());
  envp.push_back(nullptr);

  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  close(err[1]);
  if (spawned != 0) throw std::runtime_error("cannot start " + argvStrings[0]);

  CliResult result;
  std::thread writer([&] {
    size_t written = 0;
    while (written < input.size()) {
      const ssize_t n = write(in[1], input.data() + written, input.size() - written);
      if (n <= 0) break;
      written += static_cast<size_t>(n);
    }
    close(in[1]);
  });
  std::thread errReader([&] { result.err = drain(err[0]); });
  result.out = drain(out[0]);
  writer.join();
  errReader.join();
  int status = 0;
  waitpid(pid, &status, 0);
  result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

CliResult runProgram(const std::vector<std::string>& arguments) {
  std::array<int, 2> out{}, err{};
  if (pipe(out.data()) != 0 || pipe(err.data()) != 0) throw std::runtime_error("pipe failed");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  posix_spawn_file_actions_adddup2(&actions, err[1], 2);
  for (int fd : {out[0], out[1], err[0], err[1]}) posix_spawn_file_actions_addclose(&actions, fd);
  std::vector<std::string> argvStrings = arguments;
  std::vector<char*> argv;
  for (auto& a : argvStrings) argv.push_back(a.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(out[1]);
  close(err[1]);
  if (spawned != 0) {
    close(out[0]);
    close(err[0]);
    throw std::runtime_error("cannot start " + argvStrings[0]);
  }
  CliResult result;
  std::thread errReader([&] { result.err = drain(err[0]); });
  result.out = drain(out[0]);
  errReader.join();
  int status = 0;
  waitpid(pid, &status, 0);
  result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

BackgroundCli::BackgroundCli(const std::vector<std::string>& arguments,
                             const std::filesystem::path& home)
    : BackgroundCli(LEDGEON_CLI_PATH, arguments, home) {}

BackgroundCli::BackgroundCli(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments,
                             const std::filesystem::path& home) {
  std::array<int, 2> in{}, out{};
  // Close-on-exec, so that a later background program does not keep this one's stdin open.
  if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("pipe failed");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in[0], 0);
  posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  for (int fd : {in[0], in[1], out[0], out[1]}) posix_spawn_file_actions_addclose(&actions, fd);
  std::vector<std::string> argvStrings{program.string()};
  argvStrings.insert(argvStrings.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (auto& a : argvStrings) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::vector<std::string> envStrings{"LEDGEON_HOME=" + home.string()};
  for (char** e = environ; *e != nullptr; ++e) {
    if (!std::string_view(*e).starts_with("LEDGEON_HOME=")) envStrings.emplace_back(*e);
  }
  std::vector<char*> envp;
  for (auto& e : envStrings) envp.push_back(e.data());
  envp.push_back(nullptr);
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  close(in[0]);
  close(out[1]);
  stdinFd_ = in[1];
  stdoutFd_ = out[0];
  if (spawned != 0) {
    close(stdinFd_);
    close(stdoutFd_);
    throw std::runtime_error("cannot start " + argvStrings[0]);
  }
  pid_ = pid;
}

BackgroundCli::~BackgroundCli() { finish(); }

std::string BackgroundCli::readLine() {
  for (;;) {
    const auto newline = pending_.find('\n');
    if (newline != std::string::npos) {
      std::string line = pending_.substr(0, newline);
      pending_.erase(0, newline + 1);
      return line;
    }
    std::array<char, 1024> buffer{};
    const ssize_t n = stdoutFd_ >= 0 ? read(stdoutFd_, buffer.data(), buffer.size()) : 0;
    if (n <= 0) return std::exchange(pending_, std::string());
    pending_.append(buffer.data(), static_cast<size_t>(n));
  }
}

int BackgroundCli::finish() {
  if (pid_ < 0) return -1;
  if (stdinFd_ >= 0) close(stdinFd_);
  stdinFd_ = -1;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  if (stdoutFd_ >= 0) close(stdoutFd_);
  stdoutFd_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::filesystem::path sharedTestData(const std::string& relativePath) {
  return std::filesystem::path(LEDGEON_SHARED_TESTDATA_DIR) / relativePath;
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace ledgeon::testing
