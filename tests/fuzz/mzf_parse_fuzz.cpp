#include "midi/MzfContainer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<int32_t> ids;
    std::vector<std::string> parts;
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    const int32_t n = tarabix::parseMultiPart(content, ids, parts);
    size_t total = 0;
    for (const std::string& part : parts)
        total += part.size();
    // Parts are cut out of the content, so together they can never be larger than it.
    if ((n > 0 && (ids.size() != static_cast<size_t>(n) || parts.size() != ids.size())) || total > size)
        __builtin_trap();
    return 0;
}
