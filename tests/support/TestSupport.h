#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ledgeon::testing {

// A fresh folder under the system's temporary folder, removed with everything in it at the end.
class TempFolder final {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// The outcome of running the `ledgeon` program.
struct CliResult {
  int exitStatus = -1;
  std::string out;
  std::string err;
};

// Runs the built `ledgeon` with `arguments` (no shell), `input` on stdin, and LEDGEON_HOME set to
// `home` so it never touches a real home folder.
CliResult runCli(const std::vector<std::string>& arguments, const std::filesystem::path& home,
                 const std::string& input = "");

// Runs another program found on PATH (an oracle such as `unzip`), with no shell.
CliResult runProgram(const std::vector<std::string>& argv);

// The `ledgeon` program running in the background with its stdin held open, for tests in which
// two processes meet (one holds a document while the other tries to open it).
class BackgroundCli final {
 public:
  BackgroundCli(const std::vector<std::string>& arguments, const std::filesystem::path& home);
  // Another program of the build (a test helper) started the same way.
  BackgroundCli(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                const std::filesystem::path& home);
  ~BackgroundCli();
  BackgroundCli(const BackgroundCli&) = delete;
  BackgroundCli& operator=(const BackgroundCli&) = delete;

  int pid() const { return pid_; }
  // The next line the program prints on stdout; empty at its end.
  std::string readLine();
  // Closes its stdin and waits for it; returns the exit status.
  int finish();

 private:
  int pid_ = -1;
  int stdinFd_ = -1;
  int stdoutFd_ = -1;
  std::string pending_;
};

// A file of the shared real-world test data (bank OFX files, CSV edge cases).
std::filesystem::path sharedTestData(const std::string& relativePath);

// Reads a whole file.
std::string readFile(const std::filesystem::path& path);

}  // namespace ledgeon::testing
