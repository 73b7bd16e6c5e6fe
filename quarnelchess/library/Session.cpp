#include "quarnelchess/library/Session.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/board/Text.h"
#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/records/San.h"

#include <algorithm>
#include <cctype>
#include <new>
#include <string>
#include <utility>

namespace quarnel::engine {
namespace {

constexpr int PauseMs = 3;
constexpr int AtOnceMs = 2; // a callback that took less did not wait for anything
constexpr int ShownThinkingMs = 300;
constexpr int DeadlineMarginMs = 5;
// Taken at the start, so that a game needs no memory later.
constexpr std::size_t LineCapacity = 1024;
constexpr std::size_t MostEarlier = 256; // more than repetitions reach back

/// Reads the placement field as loosely as the program's own reader: any letter of its table is a piece.
bool ReadLoosePlacement(std::string_view field, Position& position) {
    constexpr std::string_view letters = "PNBRQKpnbrqkVvDd";
    int square = 0;
    for (const char c : field) {
        if (c >= '1' && c <= '8') {
            square += c - '0';
            continue;
        }
        if (c == '/') continue;
        const std::size_t code = letters.find(c);
        if (code == std::string_view::npos || square >= 64) return false;
        position.Board[square / 8 + 1][square % 8 + 1] = static_cast<std::uint8_t>(code + 1);
        ++square;
    }
    return square == 64;
}

/// A size like "64M".
std::optional<std::size_t> ReadMegabytes(std::string_view text) {
    if (text.size() < 2 || text.back() != 'M') return std::nullopt;
    const std::optional<int> size = ReadNumber(text.substr(0, text.size() - 1), 1, 1024);
    if (!size) return std::nullopt;
    return static_cast<std::size_t>(*size);
}

std::uint8_t ReadRights(std::string_view field, char kingSide, char queenSide) {
    return static_cast<std::uint8_t>((field.find(kingSide) != std::string_view::npos ? 1 : 0) +
                                     (field.find(queenSide) != std::string_view::npos ? 2 : 0));
}

} // namespace

Session::Session(Clock& clock, InputCallback input, OutputCallback output)
    : clock_(clock), input_(std::move(input)), output_(std::move(output)), search_(clock) {
    for (std::string* text : {&inbox_, &obeyed_, &text_}) text->reserve(LineCapacity);
    earlier_.reserve(MostEarlier);
    SetSeed();
    ResetPosition(RecordFromBoard(Board::Start()), 0);
}

void Session::Run() {
    while (true) Step();
}

void Session::Step() {
    if (thinking_ && ReplyIsDue()) Answer();
    const std::int64_t before = clock_.NowMs();
    input_(!thinking_ && quiet_);
    if (inbox_.empty()) {
        quiet_ = true;
        if (std::exchange(owesNoMove_, false)) SayNoMove();
        const std::int64_t now = clock_.NowMs();
        if (thinking_)
            clock_.SleepMs(static_cast<int>(std::clamp<std::int64_t>(deadlineMs_ - now, 1, PauseMs)));
        else if (now - before < AtOnceMs)
            clock_.SleepMs(PauseMs);
        return;
    }
    quiet_ = false;
    obeyed_.swap(inbox_);
    inbox_.clear();
    std::string_view lines = obeyed_;
    for (std::size_t end = lines.find('\n'); end != std::string_view::npos; end = lines.find('\n')) {
        Obey(lines.substr(0, end));
        lines.remove_prefix(end + 1);
    }
}

void Session::Obey(std::string_view line) {
    std::string_view rest = line;
    const std::string_view word = NextWord(rest);
    if (word == "force") {
        Force();
    } else if (word == "go") {
        if (!thinking_) Go();
    } else if (word == "sync") {
        clockMarkMs_ = clock_.NowMs();
    } else if (!ObeyPositionCommand(word, rest) && !ObeySetting(word, rest)) {
        if (!NextWord(rest).empty() || !UserMove(word)) Say(thinking_ ? "Illegal now." : "I do not understand.");
    }
}

bool Session::ObeySetting(std::string_view word, std::string_view rest) {
    if (!TakeSetting(word, rest)) return false;
    // At once if it can be, so that no search pays for it out of its time.
    if (!thinking_ && !pondering_) ApplySettings();
    return true;
}

bool Session::TakeSetting(std::string_view word, std::string_view rest) {
    const std::string_view first = NextWord(rest);
    const std::string_view second = NextWord(rest);
    if (word == "skill") {
        const std::optional<int> skill = ReadNumber(first, 0, 100);
        const std::optional<int> tenths = ReadNumber(second, 0, 36000);
        if (!skill || !tenths) return false;
        const bool changed = skill_ != *skill || tenths_ != *tenths;
        skill_ = *skill;
        tenths_ = *tenths;
        if (changed && pondering_) {
            StopPondering();
            Ponder();
        }
        return true;
    }
    if (word == "mt") {
        const std::optional<int> threads = ReadNumber(second, 1, 64);
        if (first != "=" || !threads) return false;
        settingsChanged_ |= threads_ != std::min(*threads, 8);
        threads_ = std::min(*threads, 8);
        return true;
    }
    if (word == "ponder") {
        if (first != "on" && first != "off") return false;
        ponderWanted_ = first == "on";
        if (!ponderWanted_)
            StopPondering();
        else if (!thinking_)
            Ponder();
        return true;
    }
    if (word == "adaptive") {
        // Five sizes: the third is the transposition table's; of the others there is no table, but the second must
        // read.
        const std::optional<std::size_t> pawnCache = ReadMegabytes(second);
        const std::optional<std::size_t> hash = ReadMegabytes(NextWord(rest));
        if (!pawnCache || !hash) return false;
        settingsChanged_ |= hashMb_ != *hash;
        hashMb_ = *hash;
        return true;
    }
    return false;
}

bool Session::ObeyPositionCommand(std::string_view word, std::string_view rest) {
    if (word == "setboard") return SetBoard(rest);
    if (word == "white") return SetSide(White);
    if (word == "black") return SetSide(Black);
    if (word == "movenumber") {
        const std::optional<int> plies = ReadNumber(NextWord(rest), 0, 100000);
        if (!plies) return false;
        if (thinking_) Force();
        StopPondering();
        plies_ = *plies;
        return true;
    }
    if (word == "new") {
        Abandon();
        search_.NewGame();
        SetSeed();
        ResetPosition(RecordFromBoard(Board::Start()), 0);
        return true;
    }
    return false;
}

bool Session::SetBoard(std::string_view fen) {
    Position position{};
    if (!ReadLoosePlacement(NextWord(fen), position)) return false;
    const std::string_view side = NextWord(fen);
    if (side != "w" && side != "b") return false;
    position.SideToMove = side == "b" ? -1 : 0;
    const std::string_view castling = NextWord(fen);
    position.WhiteCastle = ReadRights(castling, 'K', 'Q');
    position.BlackCastle = ReadRights(castling, 'k', 'q');
    const std::string_view enPassant = NextWord(fen);
    if (!enPassant.empty() && enPassant[0] >= 'a' && enPassant[0] <= 'h')
        position.EpFile = static_cast<std::uint8_t>(enPassant[0] - 'a' + 1);
    Abandon();
    ResetPosition(position, side == "b" ? 1 : 0);
    return true;
}

bool Session::SetSide(Color side) {
    if (thinking_) Force();
    StopPondering();
    if (SideToMove() == side) return true;
    Position position = record_;
    position.SideToMove = side == Black ? -1 : 0;
    ResetPosition(position, plies_);
    return true;
}

/// No two games alike.
void Session::SetSeed() {
    random_ = static_cast<std::uint64_t>(clock_.NowMs());
    search_.SetSeed(random_);
}

void Session::ResetPosition(const Position& position, int plies) {
    record_ = position;
    board_ = BoardFromRecord(record_, SideToMove());
    earlier_.clear();
    plies_ = plies;
    expected_ = {};
}

MoveList Session::LegalMoves() const {
    MoveList list;
    ListMoves(record_, SideToMove(), list);
    return list;
}

bool Session::UserMove(std::string_view text) {
    if (thinking_) return false;
    const MoveList legal = LegalMoves();
    const int index = FindSan(record_, text, legal);
    if (index < 0) return false;

    const bool asExpected = pondering_ && expected_ && MoveFromRecord(*board_, legal.Moves[index]) == expected_;
    if (!asExpected) StopPondering();
    PlayRecord(legal.Moves[index]);
    if (asExpected && !InBook()) {
        // The search already looks at this very position: let its time run.
        pondering_ = false;
        thinking_ = true;
        searchStartMs_ = clock_.NowMs();
        deadlineMs_ = searchStartMs_ + BudgetMs();
        clockMarkMs_.reset();
        search_.PonderHit();
    } else if (!AnnounceEnd()) {
        Go();
    }
    return true;
}

void Session::PlayRecord(const MoveRec& move) {
    if (board_) {
        const Move boardMove = MoveFromRecord(*board_, move);
        if (earlier_.size() == MostEarlier) earlier_.erase(earlier_.begin());
        earlier_.push_back(board_->PositionKey());
        board_->Make(boardMove);
        if (board_->HalfmoveClock() == 0) earlier_.clear();
    }
    PlayMove(record_, move);
    record_.SideToMove = static_cast<std::int16_t>(~record_.SideToMove);
    if (!board_) board_ = BoardFromRecord(record_, SideToMove());
    ++plies_;
}

SearchLimits Session::Limits() const {
    SearchLimits limits;
    limits.MoveTimeMs = std::max<std::int64_t>(BudgetMs() - DeadlineMarginMs, 20);
    limits.Skill = skill_;
    return limits;
}

bool Session::InBook() const {
    return board_ && !book_.Moves(*board_, Book::KnownPlies(skill_)).empty();
}

void Session::Go() {
    StopPondering();
    if (LegalMoves().Count == 0) {
        AnnounceEnd();
        return;
    }
    thinking_ = true;
    searchStartMs_ = clock_.NowMs();
    // A mark that is long past must not eat up the whole budget.
    const std::int64_t countedFromMs = std::max(clockMarkMs_.value_or(searchStartMs_), searchStartMs_ - BudgetMs() / 2);
    clockMarkMs_.reset();
    deadlineMs_ = countedFromMs + BudgetMs();
    if (!board_) return; // a position beyond the search is answered by a plain legal move
    bookMove_ = book_.Choose(*board_, Book::KnownPlies(skill_), random_++);
    if (bookMove_) return;
    SearchLimits limits = Limits();
    limits.StartMs = countedFromMs;
    StartSearch(Move{}, limits);
}

/// Of the position on the board, or of the one after `expected`.
void Session::StartSearch(Move expected, const SearchLimits& limits) {
    ApplySettings();
    try {
        SearchRoot root{*board_, earlier_};
        if (expected) {
            root.Earlier.push_back(board_->PositionKey());
            root.Position.Make(expected);
        }
        search_.Start(root, limits);
        searchFailed_ = false;
    } catch (const std::bad_alloc&) {
        searchFailed_ = true;
    }
}

void Session::ApplySettings() {
    if (!std::exchange(settingsChanged_, false)) return;
    search_.SetThreads(threads_);
    search_.SetHash(hashMb_);
}

void Session::Ponder() {
    if (!ponderWanted_ || pondering_ || !board_ || CountMoves(*board_) == 0) return;
    // Without an expected move the user's own choices are looked at: what the table learns serves the answer.
    const Move expected = IsLegal(*board_, expected_) ? expected_ : Move{};
    Board next = *board_;
    if (expected) next.Make(expected);
    if (CountMoves(next) == 0) return;
    SearchLimits limits = Limits();
    limits.Ponder = true;
    StartSearch(expected, limits);
    pondering_ = !searchFailed_;
}

void Session::StopPondering() {
    if (!pondering_) return;
    search_.Stop();
    pondering_ = false;
}

void Session::Force() {
    if (thinking_) {
        Answer();
        return;
    }
    StopPondering();
    SayNoMove();
}

/// Ends a search without its move, pondering too; the line that is owed from now on stands in its place.
void Session::Abandon() {
    if (thinking_) search_.Stop();
    thinking_ = false;
    bookMove_ = {};
    StopPondering();
    owesNoMove_ = true;
}

bool Session::ReplyIsDue() {
    // The reply is held back for a moment, so that it can be seen coming.
    const std::int64_t now = clock_.NowMs();
    if (now - searchStartMs_ < ShownThinkingMs) return false;
    return !board_ || bookMove_ || !search_.IsRunning() || now >= deadlineMs_;
}

/// What the book or the search has to say.
SearchResult Session::TakeResult() {
    if (!bookMove_) {
        if (searchFailed_) return {};
        search_.Stop();
        return search_.Result();
    }
    SearchResult result;
    result.Best = std::exchange(bookMove_, Move{});
    Board next = *board_;
    next.Make(result.Best);
    result.Reply = book_.Likeliest(next, Book::KnownPlies(100));
    return result;
}

void Session::Answer() {
    const MoveList legal = LegalMoves();
    MoveRec move = legal.Moves[0];
    expected_ = {};
    if (board_) {
        const SearchResult result = TakeResult();
        if (result.Best) move = RecordFromMove(*board_, result.Best);
        expected_ = result.Reply;
    }
    const char* const side = SideToMove() == White ? "White(" : "Black(";
    const std::string number = std::to_string(plies_ / 2 + 1);
    const std::string san = WriteSan(record_, move, legal);
    PlayRecord(move);
    thinking_ = false;
    Say({side, number, "): ", san, " "});
    if (!AnnounceEnd()) Ponder();
}

bool Session::AnnounceEnd() {
    if (LegalMoves().Count != 0) return false;
    if (!KingAttacked(record_, SideToMove()))
        Say("stalemate");
    else
        Say(SideToMove() == White ? "Black mates" : "White mates");
    return true;
}

void Session::Say(std::initializer_list<std::string_view> parts) {
    text_.clear();
    for (const std::string_view part : parts) text_ += part;
    quiet_ = false;
    output_(static_cast<int>(text_.size()));
}

} // namespace quarnel::engine
