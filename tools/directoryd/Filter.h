// A received search filter, and whether an entry fits it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ldap/BerCursor.h"
#include "tools/directoryd/Directory.h"

namespace directoryd {

class Filter {
  public:
    // Reads one filter (RFC 4511, 4.5.1.7) and moves `in` behind it. Null when it is malformed or
    // nested more than kMostLevels deep.
    static std::unique_ptr<Filter> Decode(BerCursor& in) { return Decode(in, 1); }

    // Values compare without regard to case; "greater" and "less" compare numbers as numbers. "Not"
    // with several filters inside fits what none of them fits; approximate is equal; an extensible
    // match fits nothing.
    bool Fits(const Entry& entry) const;

    static constexpr int kMostLevels = 100;

  private:
    struct Piece {
        unsigned char tag;
        std::string text;
    };

    static std::unique_ptr<Filter> Decode(BerCursor& in, int level);
    bool DecodeContent(BerCursor content, int level);
    bool DecodePieces(BerCursor content);
    bool ValueFits(const std::string& value) const;
    bool PiecesFit(const std::string& value) const;

    unsigned char tag_ = 0;
    std::string attribute_;
    std::string value_;
    std::vector<Piece> pieces_;
    std::vector<std::unique_ptr<Filter>> inner_;
};

}  // namespace directoryd
