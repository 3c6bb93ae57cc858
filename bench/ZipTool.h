#pragma once

// Debian's `zip -r` on a package, the floor our backups are measured against.
#include <filesystem>
#include <stdexcept>
#include <string>

#include <spawn.h>
#include <sys/wait.h>

extern char** environ;  // NOLINT: passed on to `zip`

namespace ledgeon::bench {

// Zips the folder `package` recursively into `archive` (quietly, from its parent folder, so the
// archive holds the package's name as its top folder, as our backups do).
inline void runZip(const std::filesystem::path& package, const std::filesystem::path& archive) {
  std::string program = "zip", recursive = "-r", quiet = "-q";
  std::string archivePath = archive.string(), name = package.filename().string();
  char* argv[] = {program.data(),     quiet.data(), recursive.data(),
                  archivePath.data(), name.data(),  nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, package.parent_path().c_str());
  pid_t pid = 0;
  const int spawned = posix_spawnp(&pid, "zip", &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) throw std::runtime_error("cannot run zip");
  int status = 0;
  waitpid(pid, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("zip failed");
}

}  // namespace ledgeon::bench
