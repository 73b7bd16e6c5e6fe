// Reads PGN, the exchange format of chess programs: games as tags and moves, one behind the other.
//
// Comments, variations and annotation marks are read and left out. Bytes may be UTF-8 or Latin-1, lines may end in any
// way. No bytes do harm: nothing recurses, and lines and nesting have their limits.
#pragma once

#include "Game.h"

#include <optional>
#include <string_view>

namespace quarnel::record {

class PgnReader {
  public:
    static constexpr std::size_t MostLineBytes = std::size_t{1} << 20;
    static constexpr int MostNesting = 100;

    /// `bytes` must outlive the reader.
    explicit PgnReader(std::string_view bytes);

    /// The next game; nothing behind the last one. Throws a Fault for a game that cannot be had; the one behind it is
    /// next then.
    std::optional<Game> Next();
    /// Where the game that Next() came to begins.
    std::size_t Line() const { return gameLine_; }

  private:
    bool AtEnd() const { return at_ == bytes_.size(); }
    char Peek() const { return AtEnd() ? '\0' : bytes_[at_]; }
    bool AtLineStart() const { return at_ == lineStart_; }
    bool AtTag() const;
    char Take();
    void SkipLine();
    void SkipComment();
    void SkipBlanks();
    void SkipGame();

    struct TagPairs {
        std::array<std::optional<Text>, TagCount> Kept;
        std::optional<Text> Result, SetUp, Fen, Variant;
        std::size_t FenLine = 0, VariantLine = 0;
    };
    Game ReadGame();
    TagPairs ReadTags();
    Text ReadTagValue();
    void ReadMoves(Game& game);
    void SkipVariation();
    Text ReadWord();
    bool PlayWord(Game& game, Text word) const;

    std::string_view bytes_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
    std::size_t lineStart_ = 0;
    std::size_t gameLine_ = 1;
    bool inTags_ = false; ///< of the game being read
};

} // namespace quarnel::record
