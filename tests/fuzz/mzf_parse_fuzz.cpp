#include "midi/MzfContainer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Parts are cut out of the content: as many as the count says, together never larger than it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<int32_t> ids;
    std::vector<std::string> parts;
    const int32_t n = tarabix::parseMultiPart(std::string_view(reinterpret_cast<const char*>(data), size), ids, parts);
    size_t total = 0;
    for (const std::string& part : parts)
        total += part.size();
    if ((n > 0 && (ids.size() != static_cast<size_t>(n) || parts.size() != ids.size())) || total > size)
        __builtin_trap();
    return 0;
}
