#pragma once

// tarabix-cli run as a user runs it, from the build's program folder with its data beside it.
#include <cstdio>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

struct CliRun {
    int exitCode = -1;
    std::vector<std::string> lines;
};

// Runs tarabix-cli with `arguments`; keeps stdout, or stderr when `errors` is set.
inline CliRun runCli(const std::string& arguments, bool errors = false)
{
    const std::string command = std::string(TARABIX_BIN_DIR "/tarabix-cli ") + arguments + (errors ? " 2>&1 >/dev/null" : " 2>/dev/null");
    CliRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return run;
    std::string text;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, n);
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        run.lines.push_back(line);
    return run;
}

inline const std::string kCliSamples = TARABIX_BIN_DIR "/samples/";
