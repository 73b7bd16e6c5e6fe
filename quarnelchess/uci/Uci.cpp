#include "quarnelchess/uci/Uci.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <new>

namespace quarnel::engine {
namespace {

// What the skills play like on the scale of Debian's stockfish, five seconds for the game and a twentieth for each
// move. From 50 on they are measured; the lower ones are estimates from games of the levels against each other. Between
// two of them a skill is blended; 99 is the strongest that is limited by its work.
constexpr struct {
    int Skill;
    int Elo;
} Ladder[] = {{10, 570}, {20, 860}, {30, 1170}, {50, 1510}, {75, 1850}, {92, 1990}, {99, 2490}, {100, 2750}};
constexpr int LowestElo = std::begin(Ladder)->Elo;
constexpr int HighestElo = (std::end(Ladder) - 1)->Elo;

constexpr int AnswerMarginMs = 5;                         // so that the answer is out when the time for the move is
constexpr std::int64_t Unbounded = std::int64_t{1} << 40; // milliseconds or nodes

const char* const StartText = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

/// For a game on a clock that lacks the mover's, in milliseconds: a tenth of the other clock, so that the mover does
/// not fall far behind if it has as little, and at most a second, since nobody waits for more by intention. -1: that
/// clock is missing too.
std::int64_t TimeWithoutClock(std::int64_t otherMs) {
    constexpr std::int64_t mostMs = 1000;
    return otherMs < 0 ? mostMs : std::clamp<std::int64_t>(otherMs / 10, 1, mostMs);
}

std::string MoveText(Move move) {
    if (!move) return "0000";
    std::string text;
    for (const Square square : {move.From(), move.To()}) {
        text += static_cast<char>('a' + FileOf(square));
        text += static_cast<char>('1' + RankOf(square));
    }
    if (move.IsPromotion()) text += "pnbrq"[move.PromotionKind()];
    return text;
}

Move ReadMoveText(const Board& board, std::string_view text) {
    MoveBuffer moves;
    GenerateMoves(board, moves);
    const Move* const found =
        std::find_if(moves.begin(), moves.end(), [text](Move move) { return MoveText(move) == text; });
    return found != moves.end() ? *found : Move{};
}

std::string ScoreText(int value) {
    if (value >= MateInMaxPly) return "mate " + std::to_string((MateValue - value + 1) / 2);
    if (value <= -MateInMaxPly) return "mate -" + std::to_string((MateValue + value) / 2);
    return "cp " + std::to_string(value);
}

std::string SpeedText(std::uint64_t nodes, std::int64_t elapsedMs) {
    const auto perSecond = nodes * 1000 / static_cast<std::uint64_t>(std::max<std::int64_t>(elapsedMs, 1));
    return " nodes " + std::to_string(nodes) + " nps " + std::to_string(perSecond);
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

/// The text before `word` standing by itself, which leaves `text` with what follows it; all of `text` without it.
std::string_view TakeUntil(std::string_view& text, std::string_view word) {
    const std::string_view whole = text;
    while (true) {
        const std::string_view next = NextWord(text);
        if (next.empty()) return whole;
        if (next == word) return whole.substr(0, static_cast<std::size_t>(next.data() - whole.data()));
    }
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

} // namespace

Uci::Uci(Clock& clock, Output output) : clock_(clock), output_(std::move(output)), search_(clock), elo_(HighestElo) {
    DeclareOptions();
    ApplySeed();
}

Uci::~Uci() {
    FinishSearch({});
}

// --- Lines ----------------------------------------------------------------------------------------

bool Uci::Obey(std::string_view line) {
    try {
        return ObeyCommand(line);
    } catch (const std::bad_alloc&) {
        const std::lock_guard lock(outputMutex_);
        output_("info string memory is short: the command is left out");
        return true;
    }
}

bool Uci::ObeyCommand(std::string_view line) {
    constexpr struct {
        std::string_view Word;
        void (Uci::*Do)(std::string_view rest);
    } commands[] = {{"uci", &Uci::Identify},        {"isready", &Uci::Ready},        {"ucinewgame", &Uci::NewGame},
                    {"setoption", &Uci::SetOption}, {"position", &Uci::SetPosition}, {"go", &Uci::Go},
                    {"ponderhit", &Uci::PonderHit}, {"stop", &Uci::FinishSearch},    {"debug", &Uci::Ignore},
                    {"register", &Uci::Ignore}};
    // Words that are no command are passed over, so that what follows them still counts.
    for (std::string_view word = NextWord(line); !word.empty(); word = NextWord(line)) {
        if (word == "quit") return false;
        const auto* const command =
            std::find_if(std::begin(commands), std::end(commands), [word](const auto& c) { return c.Word == word; });
        if (command != std::end(commands)) {
            (this->*command->Do)(line);
            return true;
        }
        Complain("unknown command", word);
    }
    return true;
}

void Uci::Say(const std::string& line) {
    const std::lock_guard lock(outputMutex_);
    output_(line);
}

void Uci::Complain(std::string_view what, std::string_view text) {
    Say("info string " + std::string(what) + ": " + std::string(text));
}

void Uci::Identify(std::string_view) {
    Say("id name Quarnel Chess " QUARNEL_VERSION);
    Say("id author The Quarnel Chess team");
    for (const Option& option : options_)
        Say("option name " + std::string(option.Name) + " type " + option.Declaration);
    Say("uciok");
}

void Uci::Ready(std::string_view) {
    // A running search keeps its settings.
    if (!search_.IsRunning()) {
        ApplySettings();
        search_.Settle();
    }
    Say("readyok");
}

void Uci::NewGame(std::string_view) {
    FinishSearch({});
    search_.NewGame();
    ApplySeed();
    root_ = {};
}

// --- Options --------------------------------------------------------------------------------------

Uci::Option Uci::Spin(std::string_view name, int lowest, int highest, int& value) {
    const auto take = [this, lowest, highest, &value](std::string_view text) {
        const std::optional<int> number = ReadNumber(text, lowest, highest);
        if (!number) return false;
        settingsChanged_ |= value != *number;
        value = *number;
        return true;
    };
    return {name,
            "spin default " + std::to_string(value) + " min " + std::to_string(lowest) + " max " +
                std::to_string(highest),
            take};
}

Uci::Option Uci::Check(std::string_view name, bool& value) {
    const auto take = [&value](std::string_view text) {
        if (!EqualIgnoringCase(text, "true") && !EqualIgnoringCase(text, "false")) return false;
        value = EqualIgnoringCase(text, "true");
        return true;
    };
    return {name, std::string("check default ") + (value ? "true" : "false"), take};
}

void Uci::DeclareOptions() {
    options_.push_back(Spin("Hash", 1, 1024, hashMb_));
    options_.push_back({"Clear Hash", "button", [this](std::string_view) {
                            FinishSearch({});
                            search_.NewGame();
                            return true;
                        }});
    options_.push_back(Spin("Threads", 1, 64, threads_));
    options_.push_back(Spin("MultiPV", 1, 256, multiPv_));
    options_.push_back(Check("Ponder", ponder_));
    options_.push_back(Check("OwnBook", ownBook_));
    options_.push_back(Check("UCI_LimitStrength", limitStrength_));
    options_.push_back(Spin("UCI_Elo", LowestElo, HighestElo, elo_));
    options_.push_back(Spin("Skill", 0, 100, skill_));
    options_.push_back(Spin("Seed", 0, 2147483647, seed_));
}

void Uci::SetOption(std::string_view rest) {
    std::string_view text = rest;
    if (NextWord(text) != "name") return Complain("setoption needs a name", Trimmed(rest));
    const std::string_view name = Trimmed(TakeUntil(text, "value"));
    const std::string_view value = Trimmed(text);
    const auto option = std::find_if(options_.begin(), options_.end(),
                                     [name](const Option& o) { return EqualIgnoringCase(o.Name, name); });
    if (option == options_.end()) return Complain("unknown option", name);
    if (!option->Take(value)) return Complain("unfit value for " + std::string(option->Name), value);
    if (option->Name == "Seed") {
        FinishSearch({});
        ApplySeed();
    }
}

void Uci::ApplySettings() {
    if (!settingsChanged_) return;
    search_.SetThreads(threads_);
    search_.SetHash(static_cast<std::size_t>(hashMb_));
    settingsChanged_ = false;
}

void Uci::ApplySeed() {
    random_ = static_cast<std::uint64_t>(seed_ != 0 ? seed_ : clock_.NowMs());
    search_.SetSeed(random_);
}

int Uci::SkillForElo(int elo) {
    const int wanted = std::clamp(elo, LowestElo, HighestElo);
    const auto* const above = std::find_if(std::begin(Ladder) + 1, std::end(Ladder) - 1,
                                           [wanted](const auto& rung) { return rung.Elo >= wanted; });
    const auto& below = *(above - 1);
    return below.Skill + (above->Skill - below.Skill) * (wanted - below.Elo) / (above->Elo - below.Elo);
}

// --- Position -------------------------------------------------------------------------------------

/// Takes the position and all of its moves, or leaves the old one as it was.
void Uci::SetPosition(std::string_view rest) {
    std::string_view moves = rest;
    std::string_view text = TakeUntil(moves, "moves");
    const std::string_view kind = NextWord(text);
    if (kind != "startpos" && kind != "fen") return Complain("position needs startpos or fen", Trimmed(rest));
    const std::optional<Board> start = ReadFen(kind == "fen" ? text : StartText);
    if (!start) return Complain("no such position", Trimmed(text));
    SearchRoot root{*start, {}};
    for (std::string_view word = NextWord(moves); !word.empty(); word = NextWord(moves)) {
        const Move move = ReadMoveText(root.Position, word);
        if (!move) return Complain("illegal move", word);
        root.Earlier.push_back(root.Position.PositionKey());
        root.Position.Make(move);
        if (root.Position.HalfmoveClock() == 0) root.Earlier.clear();
    }
    root_ = std::move(root);
}

// --- Search ---------------------------------------------------------------------------------------

SearchLimits Uci::ReadLimits(std::string_view rest) {
    // -1: not given.
    struct {
        std::int64_t Depth = -1, Nodes = -1, MoveTime = -1, Mate = -1, MovesToGo = -1;
        std::int64_t Time[2] = {-1, -1}, Increment[2] = {-1, -1};
    } given;
    const struct {
        std::string_view Name;
        std::int64_t& Value;
        std::int64_t Lowest, Highest; // what is beyond counts as these: an overdrawn clock has nothing left
    } numbers[] = {{"depth", given.Depth, 1, MaxPly - 2},         {"nodes", given.Nodes, 1, Unbounded},
                   {"movetime", given.MoveTime, 1, Unbounded},    {"mate", given.Mate, 1, MaxPly},
                   {"movestogo", given.MovesToGo, 0, 1000},       {"wtime", given.Time[White], 0, Unbounded},
                   {"btime", given.Time[Black], 0, Unbounded},    {"winc", given.Increment[White], 0, Unbounded},
                   {"binc", given.Increment[Black], 0, Unbounded}};
    SearchLimits limits;
    bool afterSearchMoves = false;
    for (std::string_view word = NextWord(rest); !word.empty(); word = NextWord(rest)) {
        const auto* const number =
            std::find_if(std::begin(numbers), std::end(numbers), [word](const auto& n) { return n.Name == word; });
        if (number != std::end(numbers)) {
            std::int64_t value = 0;
            std::string_view behind = rest;
            const std::string_view digits = NextWord(behind);
            const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
            if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size()) {
                Complain("no number after " + std::string(word), digits);
                continue;
            }
            number->Value = std::clamp(value, number->Lowest, number->Highest);
            rest = behind;
        } else if (word == "infinite" || word == "ponder") {
            (word == "ponder" ? limits.Ponder : limits.Infinite) = true;
        } else if (word == "searchmoves") {
            afterSearchMoves = true;
        } else if (!afterSearchMoves) {
            Complain("unknown limit", word);
        } else if (const Move move = ReadMoveText(root_.Position, word)) {
            limits.OnlyMoves.push_back(move);
        } else {
            Complain("illegal move", word);
        }
    }
    const Color side = root_.Position.SideToMove();
    mateWanted_ = static_cast<int>(std::max<std::int64_t>(given.Mate, 0));
    if (given.Depth > 0) limits.Depth = static_cast<int>(given.Depth);
    // A mate so near shows up well before this depth, or the search does not see it at all.
    if (mateWanted_ > 0) limits.Depth = std::min(limits.Depth, 4 * mateWanted_ + 12);
    limits.Nodes = static_cast<std::uint64_t>(std::max<std::int64_t>(given.Nodes, 0));
    if (given.MoveTime > 0) limits.MoveTimeMs = std::max<std::int64_t>(given.MoveTime - AnswerMarginMs, 1);
    limits.RemainingMs = given.Time[side];
    limits.IncrementMs = std::max<std::int64_t>(given.Increment[side], 0);
    limits.MovesToGo = static_cast<int>(std::max<std::int64_t>(given.MovesToGo, 0));
    const bool bounded = std::max({given.Depth, given.Nodes, given.MoveTime, given.Mate, given.Time[side]}) >= 0;
    const bool onClock =
        std::max({given.Time[~side], given.Increment[White], given.Increment[Black], given.MovesToGo}) >= 0;
    if (!bounded && onClock) limits.MoveTimeMs = TimeWithoutClock(given.Time[~side]);
    limits.Infinite |= !bounded && !onClock;
    return limits;
}

void Uci::Go(std::string_view rest) {
    FinishSearch({});
    try {
        StartSearch(rest);
    } catch (const std::bad_alloc&) {
        MoveBuffer moves;
        GenerateMoves(root_.Position, moves);
        SayBestMove(moves.Empty() ? Move{} : moves[0], {});
    }
}

void Uci::StartSearch(std::string_view rest) {
    ApplySettings();
    SearchLimits limits = ReadLimits(rest);
    limits.MultiPv = multiPv_;
    limits.Skill = limitStrength_ ? SkillForElo(elo_) : skill_;
    if (ownBook_ && AnswerFromBook(limits)) return;
    startMs_ = limits.StartMs = clock_.NowMs();
    linesShown_ = multiPv_;
    shownBest_ = {};
    inCheck_ = root_.Position.InCheck();
    search_.Start(
        root_, limits, [this](const SearchInfo& info) { ShowInfo(info); },
        [this](const SearchResult& result) { ShowAnswer(result); });
}

/// Not when the interface asks for thoughts rather than a move.
bool Uci::AnswerFromBook(const SearchLimits& limits) {
    if (limits.Infinite || limits.Ponder || mateWanted_ > 0 || !limits.OnlyMoves.empty()) return false;
    const Move move = book_.Choose(root_.Position, Book::KnownPlies(limits.Skill), random_++);
    if (!move) return false;
    Board next = root_.Position;
    next.Make(move);
    SayBestMove(move, book_.Likeliest(next, Book::KnownPlies(100)));
    return true;
}

void Uci::PonderHit(std::string_view) {
    search_.PonderHit();
}

void Uci::FinishSearch(std::string_view) {
    search_.Stop();
    AwaitAnswer();
}

/// On a search thread.
void Uci::ShowInfo(const SearchInfo& info) {
    if (info.MultiPvIndex >= linesShown_) return; // a weaker player compares more moves than it shows
    if (info.MultiPvIndex == 0) shownBest_ = info.Line.Moves[0];
    std::string line = "info depth " + std::to_string(info.Line.Depth) + " seldepth " +
                       std::to_string(std::max(info.Line.SelectiveDepth, info.Line.Depth)) + " multipv " +
                       std::to_string(info.MultiPvIndex + 1) + " score " + ScoreText(info.Line.Value) +
                       SpeedText(info.Nodes, info.ElapsedMs) + " hashfull " + std::to_string(info.HashPermille) +
                       " time " + std::to_string(info.ElapsedMs) + " pv";
    for (const Move move : info.Line.Moves) line += " " + MoveText(move);
    Say(line);
    if (mateWanted_ > 0 && info.Line.Value >= MateValue - (2 * mateWanted_ - 1)) search_.Stop();
}

/// On a search thread.
void Uci::ShowAnswer(const SearchResult& result) {
    try {
        ShowSummary(result);
    } catch (const std::bad_alloc&) {
        // The move counts.
    }
    SayBestMove(result.Best, result.Reply);
}

void Uci::ShowSummary(const SearchResult& result) {
    if (!result.Best) return Say(std::string("info depth 0 score ") + (inCheck_ ? "mate 0" : "cp 0"));
    const std::int64_t elapsedMs = clock_.NowMs() - startMs_;
    std::string line = "info";
    // The move may have come up since the last whole line.
    if (result.Best != shownBest_)
        line += " depth " + std::to_string(result.Depth) + " score " + ScoreText(result.Value);
    line += SpeedText(result.Nodes, elapsedMs) + " time " + std::to_string(elapsedMs);
    if (result.Best != shownBest_)
        line += " pv " + MoveText(result.Best) + (result.Reply ? " " + MoveText(result.Reply) : "");
    Say(line);
}

void Uci::SayBestMove(Move best, Move reply) {
    std::string line = "bestmove " + MoveText(best); // so short that it needs no memory
    try {
        if (reply) line += " ponder " + MoveText(reply);
    } catch (const std::bad_alloc&) {
        // Without it, then.
    }
    Say(line);
}

} // namespace quarnel::engine
