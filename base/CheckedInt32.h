#pragma once

#include <cstdint>
#include <optional>

namespace tarabix {

// 32-bit arithmetic where an overflow is an outcome the caller reports (a status, an error),
// not undefined behaviour. Empty means the exact result does not fit in int32.

inline std::optional<int32_t> checkedAdd(int32_t a, int32_t b)
{
    int32_t r;
    if (__builtin_add_overflow(a, b, &r))
        return std::nullopt;
    return r;
}

inline std::optional<int32_t> checkedSub(int32_t a, int32_t b)
{
    int32_t r;
    if (__builtin_sub_overflow(a, b, &r))
        return std::nullopt;
    return r;
}

inline std::optional<int32_t> checkedMul(int32_t a, int32_t b)
{
    int32_t r;
    if (__builtin_mul_overflow(a, b, &r))
        return std::nullopt;
    return r;
}

}  // namespace tarabix
