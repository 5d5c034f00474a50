#include "tools/cli/Commands.h"

#include <cstdio>

namespace tarabix::cli {

int version(const Args&)
{
    std::puts("Tarabix 1.4");
    return 0;
}

}  // namespace tarabix::cli
