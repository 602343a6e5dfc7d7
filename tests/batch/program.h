#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

// What a program printed and how it ended; a status of -1 when a signal ended it.
struct program_run {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs a program to its end, without a terminal and without input.
inline program_run run_program(const std::string& path, const std::vector<std::string>& arguments) {
  const std::string out = (odbc_sandbox::instance().folder() / "program.out").string();
  const std::string err = (odbc_sandbox::instance().folder() / "program.err").string();
  std::vector<char*> words{const_cast<char*>(path.c_str())};
  for (const std::string& each : arguments) words.push_back(const_cast<char*>(each.c_str()));
  words.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&files, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  pid_t child = 0;
  const int failed = posix_spawn(&child, path.c_str(), &files, &attributes, words.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (failed != 0) throw std::runtime_error("cannot start " + path);
  int ended = 0;
  if (waitpid(child, &ended, 0) != child) throw std::runtime_error("lost " + path);
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, bytes_of(out), bytes_of(err)};
}
