#include "tools/cli/Commands.h"

#include "TarabixVersion.h"

#include <cstdio>

namespace tarabix::cli {

int version(const Args&)
{
    std::puts("Tarabix " TARABIX_VERSION);
    return 0;
}

}  // namespace tarabix::cli
