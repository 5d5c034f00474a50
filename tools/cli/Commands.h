#pragma once

#include <string>
#include <vector>

namespace tarabix::cli {

// A command gets the arguments after its name and returns the process's exit code.
using Args = std::vector<std::string>;

int version(const Args& args);
int devices(const Args& args);
int dump(const Args& args);
int play(const Args& args);
int render(const Args& args);
int scale(const Args& args);

}  // namespace tarabix::cli
