#include "Positions.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace quarnel::tuning {

using namespace engine;

static_assert(std::endian::native == std::endian::little, "shards are read and written as they lie in memory");

PackedPosition Pack(const Board& board) {
    PackedPosition packed;
    packed.Occupied = board.Occupied();
    int index = 0;
    for (Bitboard rest = packed.Occupied; rest != 0; ++index)
        packed.Pieces[index / 2] |= static_cast<std::uint8_t>(board.At(PopLowest(rest)) << (index % 2 * 4));
    packed.Side = board.SideToMove();
    packed.HalfmoveClock = static_cast<std::uint8_t>(std::min(board.HalfmoveClock(), 255));
    return packed;
}

std::optional<Board> Unpack(const PackedPosition& packed) {
    if (PopCount(packed.Occupied) > 32 || packed.Side > Black) return std::nullopt;
    BoardBuilder builder;
    int index = 0;
    for (Bitboard rest = packed.Occupied; rest != 0; ++index) {
        const auto piece = static_cast<Piece>(packed.Pieces[index / 2] >> (index % 2 * 4) & 15);
        if (KindOf(piece) > King) return std::nullopt;
        builder.Put(PopLowest(rest), piece);
    }
    builder.SetSide(static_cast<Color>(packed.Side));
    builder.SetHalfmoveClock(packed.HalfmoveClock);
    return builder.Build();
}

bool WriteShard(const std::string& path, Shard& shard) {
    shard.Header.Positions = shard.Positions.size();
    const std::string unfinished = path + ".part";
    {
        std::ofstream file(unfinished, std::ios::binary);
        file.write(reinterpret_cast<const char*>(&shard.Header), sizeof shard.Header);
        file.write(reinterpret_cast<const char*>(shard.Positions.data()),
                   static_cast<std::streamsize>(shard.Positions.size() * sizeof(PackedPosition)));
        if (!file.flush()) return false;
    }
    std::error_code error;
    std::filesystem::rename(unfinished, path, error);
    return !error;
}

std::optional<Shard> ReadShard(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    Shard shard;
    const ShardHeader expected;
    if (error || !file.read(reinterpret_cast<char*>(&shard.Header), sizeof shard.Header) ||
        std::memcmp(shard.Header.Magic, expected.Magic, sizeof expected.Magic) != 0 ||
        shard.Header.Positions > (size - sizeof shard.Header) / sizeof(PackedPosition))
        return std::nullopt;
    shard.Positions.resize(shard.Header.Positions);
    if (!file.read(reinterpret_cast<char*>(shard.Positions.data()),
                   static_cast<std::streamsize>(shard.Positions.size() * sizeof(PackedPosition))))
        return std::nullopt;
    return shard;
}

} // namespace quarnel::tuning
