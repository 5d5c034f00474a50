#include "base/TickSource.h"

#include <chrono>
#include <thread>

namespace tarabix {

int32_t tickMs()
{
    using namespace std::chrono;
    static const steady_clock::time_point origin = steady_clock::now();
    return static_cast<int32_t>(duration_cast<milliseconds>(steady_clock::now() - origin).count());
}

void sleepMs(int32_t ms)
{
    if (ms > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace tarabix
