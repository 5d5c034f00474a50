#include "settings/TextNumbers.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarabix {
namespace {

TEST(TextNumbers, Int32Texts)
{
    const std::pair<const char*, std::optional<int32_t>> cases[] = {
        {"5", 5}, {" \t-12 ", -12}, {"+7", 7}, {"2.5", 2}, {"3.5", 4}, {"-0.5", 0}, {"2147483647", 2147483647}, {"-2147483648", INT32_MIN},
        {"2147483648", std::nullopt}, {"", std::nullopt}, {"-", std::nullopt}, {".", std::nullopt}, {"1e3", std::nullopt},
        {"0x10", std::nullopt}, {"12abc", std::nullopt}, {"1 2", std::nullopt}, {"1.2.3", std::nullopt}, {"+-1", std::nullopt}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(textToInt32(text), expected) << text;
}

TEST(TextNumbers, BoolTexts)
{
    const std::pair<const char*, std::optional<bool>> cases[] = {{"True", true}, {"FALSE", false}, {" true ", true}, {"0", false},
        {"-1", true}, {"0.0", false}, {"0.25", true}, {"yes", std::nullopt}, {"", std::nullopt}, {"Truex", std::nullopt}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(textToBool(text), expected) << text;
}

}  // namespace
}  // namespace tarabix
