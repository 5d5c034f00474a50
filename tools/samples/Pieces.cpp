#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

std::vector<Piece> allPieces()
{
    std::vector<Piece> all;
    for (auto family : {ajamFamilyPieces, rastFamilyPieces, bayatiFamilyPieces, hijazFamilyPieces})
        for (Piece& piece : family())
            all.push_back(std::move(piece));
    return all;
}

}  // namespace tarabix::samples
