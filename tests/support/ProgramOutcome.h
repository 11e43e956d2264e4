#pragma once
// ProgramOutcome: runs a shell command line (a program of the build with its arguments) and
// answers its exit status and everything it printed, standard output and standard error together.

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct ProgramOutcome {
  int status = -1;  ///< the exit status; -1 when it did not exit normally or could not start
  std::string output;

  static ProgramOutcome run(const std::string& commandLine) {
    ProgramOutcome outcome;
    FILE* pipe = ::popen((commandLine + " 2>&1").c_str(), "r");
    if (!pipe) return outcome;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) outcome.output.append(buffer, n);
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
  }
};
