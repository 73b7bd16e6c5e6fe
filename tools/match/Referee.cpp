#include "Referee.h"

namespace quarnel::match {
namespace {

/// The move of the player whose turn it is, legal and in time.
Move AskForMove(Player& player, const Game& game, GameClock& clock, std::optional<int>& scoreCp) {
    const ClockTimes times = clock.Times();
    clock.Start(game.SideToMove());
    const Answer answer = player.Choose(game, times);
    if (const auto overdrawn = clock.Stop()) throw Fault(Ending::LostOnTime, *overdrawn);
    const Move move = FindMove(game.Position(), answer.Text);
    if (!move) throw Fault(Ending::IllegalMove, "\"" + answer.Text + "\" is not legal");
    scoreCp = answer.ScoreCp;
    return move;
}

Outcome PlayOn(Player* const (&players)[2], GameTerms& terms, const std::atomic<bool>& stop, Game& game) {
    const AdjudicationRules& rules = terms.Adjudication;
    Adjudicator adjudicator(rules);
    for (;;) {
        if (const auto end = game.EndByRules()) return *end;
        if (game.Plies() >= rules.MaxPlies) return {1, Ending::Length};
        if (stop.load(std::memory_order_relaxed)) throw Interrupted();
        const Color mover = game.SideToMove();
        std::optional<int> scoreCp;
        game.Play(AskForMove(*players[mover], game, terms.Clock, scoreCp));
        const std::optional<Outcome> verdict = adjudicator.Judge(mover, scoreCp, game.Plies());
        if (verdict && !game.EndByRules()) return *verdict;
    }
}

} // namespace

std::optional<Outcome> Adjudicator::Judge(Color mover, std::optional<int> scoreCp, int plies) {
    if (!rules_.Enabled) return std::nullopt;
    const int whiteCp = mover == engine::White ? scoreCp.value_or(0) : -scoreCp.value_or(0);
    const auto follow = [&](int& count, bool seen) { count = scoreCp && seen ? count + 1 : 0; };
    follow(winning_[engine::White], whiteCp >= rules_.WinCp);
    follow(winning_[engine::Black], whiteCp <= -rules_.WinCp);
    follow(drawn_, std::abs(whiteCp) <= rules_.DrawCp && plies > 2 * rules_.DrawFromMove);
    // The players take turns, so an even number of half-moves is as many moves of each.
    for (const Color side : {engine::White, engine::Black})
        if (winning_[side] >= 2 * rules_.WinMoves) return LostBy(~side, Ending::AdjudicatedWin);
    if (drawn_ >= 2 * rules_.DrawMoves) return Outcome{1, Ending::AdjudicatedDraw};
    return std::nullopt;
}

Outcome PlayGame(Player& white, Player& black, GameTerms terms, const std::atomic<bool>& stop, Game& game,
                 std::string& faultText) {
    Player* const players[2] = {&white, &black};
    Color current = engine::White; // who is being set up
    bool playing = false;
    try {
        players[engine::White]->NewGame(terms.Seed);
        current = engine::Black;
        players[engine::Black]->NewGame(terms.Seed + 1);
        playing = true;
        return PlayOn(players, terms, stop, game);
    } catch (const Fault& fault) {
        if (playing) current = game.SideToMove();
        if (fault.How != Ending::LostOnTime) players[current]->Discard();
        faultText = fault.what();
        return LostBy(current, fault.How);
    }
}

} // namespace quarnel::match
