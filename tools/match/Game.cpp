#include "Game.h"

#include <algorithm>
#include <iterator>

namespace quarnel::match {
namespace {

constexpr const char* EndingNames[] = {
    "checkmate",        "stalemate", "repetition", "fifty-moves",  "material",  "adjudicated-win",
    "adjudicated-draw", "length",    "crash",      "illegal-move", "no-answer", "lost-on-time",
};
static_assert(std::size(EndingNames) == static_cast<std::size_t>(Ending::Count));

} // namespace

std::string MoveText(Move move) {
    std::string text;
    for (const engine::Square square : {move.From(), move.To()}) {
        text += static_cast<char>('a' + engine::FileOf(square));
        text += static_cast<char>('1' + engine::RankOf(square));
    }
    if (move.IsPromotion()) text += "pnbrq"[move.PromotionKind()];
    return text;
}

Move FindMove(const Board& board, std::string_view text) {
    engine::MoveBuffer moves;
    engine::GenerateMoves(board, moves);
    const Move* const found =
        std::find_if(moves.begin(), moves.end(), [text](Move move) { return MoveText(move) == text; });
    return found != moves.end() ? *found : Move();
}

const char* NameOf(Ending ending) {
    return EndingNames[static_cast<std::size_t>(ending)];
}

Ending EndingOf(std::string_view name) {
    return static_cast<Ending>(std::find(std::begin(EndingNames), std::end(EndingNames), name) -
                               std::begin(EndingNames));
}

void Game::Play(Move move) {
    earlier_.push_back(board_.PositionKey());
    board_.Make(move);
    moves_.push_back(move);
    text_ += ' ' + MoveText(move);
}

std::optional<Outcome> Game::EndByRules() const {
    if (engine::CountMoves(board_) == 0)
        return board_.InCheck() ? LostBy(SideToMove(), Ending::Checkmate) : Outcome{1, Ending::Stalemate};
    // Positions before the last capture or pawn move cannot come back.
    const auto reach = std::min<std::ptrdiff_t>(board_.HalfmoveClock(), Plies());
    if (std::count(earlier_.end() - reach, earlier_.end(), board_.PositionKey()) >= 2)
        return Outcome{1, Ending::Repetition};
    if (board_.HalfmoveClock() >= 100) return Outcome{1, Ending::FiftyMoves};
    if (board_.InsufficientMaterial()) return Outcome{1, Ending::Material};
    return std::nullopt;
}

} // namespace quarnel::match
