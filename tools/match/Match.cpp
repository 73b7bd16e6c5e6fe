#include "Match.h"

#include "quarnelchess/board/Mix.h"
#include "quarnelchess/board/Text.h"
#include "quarnelchess/records/San.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace quarnel::match {
namespace {

/// A number that changes with the file's bytes (FNV-1a), so that a journal does not mix two builds of one
/// program; empty when the command's first word is no file.
std::string Fingerprint(const std::string& command) {
    std::ifstream file(command.substr(0, command.find(' ')), std::ios::binary);
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    char chunk[65536];
    if (!file) return {};
    while (file.read(chunk, sizeof chunk) || file.gcount() > 0)
        for (std::streamsize i = 0; i < file.gcount(); ++i)
            hash = (hash ^ static_cast<unsigned char>(chunk[i])) * 0x100000001B3ULL;
    std::ostringstream text;
    text << ", build " << std::hex << hash;
    return text.str();
}

std::string Describe(const PlayerSetup& player) {
    constexpr const char* kinds[] = {"", ", nodes=", ", movetime=", ", depth=", ", clock="};
    const Limit& limit = player.Thinking;
    std::string text = player.Name + ": " + player.Command + kinds[static_cast<std::size_t>(limit.What)];
    if (limit.What == Limit::Kind::Clock)
        text += WriteClockRules(limit.Rules);
    else if (limit.What != Limit::Kind::None)
        text += std::to_string(limit.Value);
    for (const auto& [name, value] : player.Options) text.append(", ").append(name).append("=").append(value);
    return text + (player.IsBuiltin() ? "" : Fingerprint(player.Command));
}

/// What two runs must share for their games to count together; one line each.
std::string Settings(const MatchSetup& setup) {
    std::ostringstream text;
    text << "first player " << Describe(setup.Players[0]) << "\nsecond player " << Describe(setup.Players[1])
         << "\nopenings: seed " << setup.Opening.Seed << ", plies " << setup.Opening.Plies << ", balance "
         << setup.Opening.BalanceCp << "\n";
    const AdjudicationRules& rules = setup.Adjudication;
    if (rules.Enabled)
        text << "adjudication: win " << rules.WinCp << " cp for " << rules.WinMoves << " moves, draw " << rules.DrawCp
             << " cp for " << rules.DrawMoves << " moves after move " << rules.DrawFromMove << "\n";
    text << "longest game: " << rules.MaxPlies << " plies\n";
    if (setup.ClockMarginMs > 0) text << "clocks may be overdrawn by " << setup.ClockMarginMs << " ms\n";
    return text.str();
}

std::string MoveTextPgn(const Game& game) {
    std::ostringstream text;
    Board board = Board::Start();
    std::size_t column = 0;
    int ply = 0;
    for (const Move move : game.Moves()) {
        std::string word = board.SideToMove() == engine::White ? std::to_string(ply / 2 + 1) + ". " : "";
        word += engine::WriteSan(board, move);
        board.Make(move);
        if (board.InCheck()) word += engine::CountMoves(board) == 0 ? '#' : '+';
        ++ply;
        column += word.size() + 1;
        if (column > 90) {
            text << '\n';
            column = word.size() + 1;
        }
        text << word << ' ';
    }
    return text.str();
}

} // namespace

Match::Match(MatchSetup setup, const std::atomic<bool>& stop)
    : setup_(std::move(setup)), stop_(stop), names_{setup_.Players[0].Name, setup_.Players[1].Name},
      journal_(setup_.JournalPath, setup_.JournalPath.empty() ? "" : Settings(setup_), names_),
      played_(static_cast<std::size_t>(setup_.Games)) {
    for (const GameResult& result : journal_.Earlier()) {
        openings_[result.Pair] = result.Opening;
        Count(result);
    }
}

void Match::Run(const Progress& progress) {
    std::vector<std::thread> workers;
    workers.reserve(static_cast<std::size_t>(setup_.Concurrency));
    for (int i = 0; i < setup_.Concurrency; ++i) workers.emplace_back([this, &progress] { Work(progress); });
    for (std::thread& worker : workers) worker.join();
    if (failure_) std::rethrow_exception(failure_);
}

void Match::Work(const Progress& progress) {
    try {
        std::optional<int> pair = NextPair();
        if (!pair) return;
        Openings openings(setup_.Opening);
        const std::unique_ptr<Player> first = MakePlayer(setup_.Players[0], stop_);
        const std::unique_ptr<Player> second = MakePlayer(setup_.Players[1], stop_);
        for (; pair; pair = NextPair()) PlayPair(*pair, openings, *first, *second, progress);
    } catch (const Interrupted&) {
        return; // the journal holds what is finished
    } catch (...) {
        const std::lock_guard lock(mutex_);
        if (!failure_) failure_ = std::current_exception();
    }
}

std::optional<int> Match::NextPair() {
    const std::lock_guard lock(mutex_);
    if (failure_ || verdict_ != Verdict::Undecided || stop_.load(std::memory_order_relaxed)) return std::nullopt;
    while (2 * nextPair_ < setup_.Games && IsPlayed(nextPair_, 0) && IsPlayed(nextPair_, 1)) ++nextPair_;
    if (2 * nextPair_ >= setup_.Games) return std::nullopt;
    return nextPair_++;
}

void Match::PlayPair(int pair, Openings& openings, Player& first, Player& second, const Progress& progress) {
    const Game opening = OpeningOf(pair, openings);
    for (int leg = 0; leg < 2; ++leg) {
        {
            const std::lock_guard lock(mutex_);
            if (IsPlayed(pair, leg)) continue;
        }
        Game game = opening;
        std::string faultText;
        const Outcome outcome =
            PlayGame(leg == 0 ? first : second, leg == 0 ? second : first, TermsOf(pair, leg), stop_, game, faultText);
        const int points = leg == 0 ? outcome.WhiteHalfPoints : 2 - outcome.WhiteHalfPoints;
        const GameResult result{pair, leg, points, outcome.How, game.Plies(), opening.MovesText()};

        const std::lock_guard lock(mutex_);
        if (!setup_.PgnPath.empty()) WritePgn(result, game, faultText);
        journal_.Append(result);
        Count(result);
        if (progress) progress(*this, result);
    }
}

GameTerms Match::TermsOf(int pair, int leg) const {
    const Limit& white = setup_.Players[leg].Thinking;
    const Limit& black = setup_.Players[1 - leg].Thinking;
    return {setup_.Adjudication, engine::Mix(engine::Mix(setup_.Opening.Seed + 1) + GameIndex(pair, leg)),
            GameClock(white.Clock(), black.Clock(), setup_.ClockMarginMs, setup_.ClockSource)};
}

Game Match::OpeningOf(int pair, Openings& openings) const {
    const auto found = openings_.find(pair);
    if (found == openings_.end()) return openings.Opening(pair);
    Game game;
    std::string_view rest = found->second;
    for (std::string_view word = engine::NextWord(rest); !word.empty(); word = engine::NextWord(rest)) {
        const Move move = FindMove(game.Position(), word);
        if (!move) throw std::runtime_error("The journal holds an opening that is not legal:" + found->second);
        game.Play(move);
    }
    return game;
}

void Match::Count(const GameResult& result) {
    const std::size_t index = GameIndex(result.Pair, result.Leg);
    if (index >= played_.size()) played_.resize(index + 1);
    if (played_[index]) return;
    played_[index] = true;
    const bool completesPair = tally_.Add(result);
    if (setup_.Test && completesPair && verdict_ == Verdict::Undecided)
        verdict_ = JudgeRatio(LogLikelihoodRatio(tally_.Pairs, setup_.Test->Elo0, setup_.Test->Elo1));
}

void Match::WritePgn(const GameResult& result, const Game& game, const std::string& faultText) const {
    std::ofstream file(setup_.PgnPath, std::ios::app);
    const char* const score = ResultText(result.WhiteHalfPoints());
    file << "[Event \"" << names_[0] << " - " << names_[1] << "\"]\n[Round \"" << result.Pair + 1 << '.'
         << result.Leg + 1 << "\"]\n[White \"" << names_[result.Leg] << "\"]\n[Black \"" << names_[1 - result.Leg]
         << "\"]\n[Result \"" << score << "\"]\n[Termination \"" << NameOf(result.How) << "\"]\n\n"
         << MoveTextPgn(game);
    if (!faultText.empty()) file << "{" << faultText << "} ";
    file << score << "\n\n";
    if (!file.flush()) throw std::runtime_error("The games file " + setup_.PgnPath + " cannot be written.");
}

std::string Summary(const Match& match) {
    const MatchSetup& setup = match.Setup();
    const Tally& tally = match.Standing();
    const ScoreEstimate score = EstimateScore(tally.Pairs);
    std::ostringstream text;
    text.setf(std::ios::fixed);
    text.precision(1);
    text << setup.Players[0].Name << " - " << setup.Players[1].Name << ": " << tally.Wins << " wins, " << tally.Draws
         << " draws, " << tally.Losses << " losses in " << tally.Games() << " games\n";
    text << "score " << 100 * score.Score << " % (95 %: " << 100 * score.Low << " to " << 100 * score.High << "), Elo "
         << EloFromScore(score.Score) << " (" << EloFromScore(score.Low) << " to " << EloFromScore(score.High) << ")\n";
    text << "pairs by points 0, 1/2, 1, 3/2, 2:";
    for (const int count : tally.Pairs) text << ' ' << count;
    text << "\nendings:";
    for (std::size_t i = 0; i < std::size(tally.Endings); ++i)
        if (tally.Endings[i] != 0) text << ' ' << NameOf(static_cast<Ending>(i)) << ' ' << tally.Endings[i];
    text << "\n";
    for (std::size_t i = 0; i < 2; ++i) {
        const auto count = [&](Ending how) { return tally.Faults[i][static_cast<std::size_t>(how)]; };
        text << "faults of " << setup.Players[i].Name << ": losses on time " << count(Ending::LostOnTime)
             << ", illegal moves " << count(Ending::IllegalMove) << ", crashes " << count(Ending::Crash) << ", hangs "
             << count(Ending::NoAnswer) << "\n";
    }
    if (setup.Test) {
        constexpr const char* verdicts[] = {"undecided", "accepted", "rejected"};
        text.precision(2);
        text << "sequential test of Elo " << setup.Test->Elo1 << " against " << setup.Test->Elo0
             << ": log-likelihood ratio " << LogLikelihoodRatio(tally.Pairs, setup.Test->Elo0, setup.Test->Elo1)
             << " (2.94 accepts, -2.94 rejects), " << verdicts[static_cast<std::size_t>(match.TestVerdict())] << "\n";
    }
    return text.str();
}

} // namespace quarnel::match
