#include "app/SheetPicture.h"

#include <limits>

namespace tarabix {

QImage pictureFromBytes(const std::string& bytes)
{
    QImage picture;
    if (bytes.empty() || bytes.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
        return picture;
    if (!picture.loadFromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size())))
        return QImage();
    return picture;
}

}  // namespace tarabix
