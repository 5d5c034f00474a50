#include "midi/MidiBytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace tarabix {
namespace {

TEST(PitchWheel, EveryQuarterToneOfTheRangeGoesThereAndBack)
{
    const std::pair<int32_t, int32_t> quarterTones[] = {
        {-200, 0},    {-150, 2048},  {-100, 4096},  {-50, 6144}, {0, 8192},
        {50, 10240},  {100, 12288},  {150, 14336},  {200, 16383},  // +200 is one step past the top
    };
    for (const auto& [cents, wheel] : quarterTones) {
        EXPECT_EQ(centsToWheel(cents), wheel) << cents;
        EXPECT_EQ(wheelToCents(wheel), cents) << wheel;
    }
}

TEST(PitchWheel, CentsToWheelRoundsHalvesToEvenAndStaysInside14Bits)
{
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, int32_t> cases[] = {
        {0.01220703125, 8192},   // 8192.5 down to even
        {0.03662109375, 8194},   // 8193.5 up to even
        {-0.01220703125, 8192},  // 8191.5 up to even
        {37.5, 9728},           {-199, 41},    {199, 16343},  {250, 16383}, {-250, 0},
        {1e12, 16383},          {inf, 16383},  {-inf, 0},     {std::nan(""), 8192},
    };
    for (const auto& [cents, wheel] : cases)
        EXPECT_EQ(centsToWheel(cents), wheel) << cents;
}

TEST(PitchWheel, WheelToCentsRoundsHalvesToEven)
{
    const std::pair<int32_t, int32_t> cases[] = {
        {8704, 12}, {9728, 38}, {7680, -12},  // 12.5, 37.5, -12.5 cents
        {9175, 24}, {9257, 26}, {7127, -26}, {8212, 0}, {8213, 1}, {8171, -1},
    };
    for (const auto& [wheel, cents] : cases)
        EXPECT_EQ(wheelToCents(wheel), cents) << wheel;
}

TEST(PitchWheel, DataBytesSplitAndJoin)
{
    for (const int32_t wheel : {0, 41, 127, 128, 8192, 16343, 16383}) {
        EXPECT_LT(wheelLsb(wheel), 128) << wheel;
        EXPECT_LT(wheelMsb(wheel), 128) << wheel;
        EXPECT_EQ(wheelOf(wheelLsb(wheel), wheelMsb(wheel)), wheel);
    }
}

TEST(BigEndian, ReadAndWriteMostSignificantFirst)
{
    const std::pair<std::string, uint32_t> cases[] = {
        {std::string("\x00\x00\x00\x06", 4), 6}, {"\x07\xA1\x20", 500000}, {"\xE7\x28", 0xE728},
        {"\xFF\xFF\xFF\xFF", 0xFFFFFFFF},        {"\x80", 0x80},
    };
    for (const auto& [bytes, value] : cases) {
        EXPECT_EQ(readBigEndian(bytes), value);
        EXPECT_EQ(bigEndianBytes(value, static_cast<int>(bytes.size())), bytes);
    }
    EXPECT_EQ(readBigEndian(""), 0u);
    EXPECT_EQ(bigEndianBytes(0x12345678, 3), "\x34\x56\x78");  // the high byte left out
}

}  // namespace
}  // namespace tarabix
