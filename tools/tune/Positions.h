// Positions to learn from, 32 bytes each, in files ("shards") of whole games.
//
// A shard is a ShardHeader and its positions in the order of the games, little-endian. It is written under another
// name first, so a file with a shard's name is complete. Plain values; any thread, one file each.
#pragma once

#include "quarnelchess/board/Board.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarnel::tuning {

/// A quiet position with what became of it. "Own" is the side to move.
struct PackedPosition {
    std::uint64_t Occupied = 0;
    std::uint8_t Pieces[16] = {};   // of the occupied squares from a1 on, four bits each, low ones first
    std::int16_t ValueCp = 0;       // of the search, own view
    std::uint8_t Result = 1;        // of the game, own view: 0 lost, 1 drawn, 2 won
    std::uint8_t Side = 0;          // engine::Color to move
    std::uint8_t HalfmoveClock = 0; // plies
    std::uint8_t Ply = 0;           // from the start position, 255 at most
    std::uint16_t Game = 0;         // within the shard
};
static_assert(sizeof(PackedPosition) == 32);

struct ShardHeader {
    char Magic[8] = {'Q', 'C', 'P', 'O', 'S', 'N', '0', '1'};
    std::uint64_t Seed = 0;
    std::uint64_t FirstGame = 0;
    std::uint32_t Games = 0;
    std::uint32_t Nodes = 0; // a move
    std::uint64_t Positions = 0;
};

struct Shard {
    ShardHeader Header;
    std::vector<PackedPosition> Positions;
};

/// Board, side and clock alone.
PackedPosition Pack(const engine::Board& board);
/// Without castling rights and en passant; nothing for bytes that are no position.
std::optional<engine::Board> Unpack(const PackedPosition& packed);

/// Sets the header's count. False when the file cannot be written.
bool WriteShard(const std::string& path, Shard& shard);
/// Nothing when the file is none or is shorter than it says.
std::optional<Shard> ReadShard(const std::string& path);

} // namespace quarnel::tuning
