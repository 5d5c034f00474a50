#pragma once

#include "app/PracticeSetup.h"

#include <optional>
#include <string>

namespace tarabix {

class UserSettings;

// A piece's practice as the learner left it: the practice row and the speed.
struct RememberedPractice {
    PracticeSetup setup;
    int32_t speedPercent = 100;
};

// What was kept for the piece at this path, or none. Not checked against the piece: the caller
// checks it as it checks the learner's own changes.
std::optional<RememberedPractice> recallPractice(const UserSettings& settings, const std::string& piecePath);
// Kept at once, so closing the program any way loses nothing. A practice with nothing set and
// the written tempo forgets the piece.
void rememberPractice(UserSettings& settings, const std::string& piecePath, const RememberedPractice& practice);

}  // namespace tarabix
