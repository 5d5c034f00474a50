#pragma once

#include <QImage>

#include <string>

namespace tarabix {

// Turns the bytes of an MZF sheet part (any picture format Qt reads) into a picture. A null
// picture when the bytes are empty or not a picture; nothing is reported.
QImage pictureFromBytes(const std::string& bytes);

}  // namespace tarabix
