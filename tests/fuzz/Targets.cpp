#include "Targets.h"

#include "PgnReader.h"
#include "PgnWriter.h"
#include "RecordText.h"
#include "base/Numbers.h"
#include "monkey/Core.h"
#include "notation/LongText.h"
#include "notation/MoveTextReader.h"
#include "notation/PositionText.h"
#include "platform/CodePage.h"
#include "quarnelchess/board/Fen.h"
#include "quarnelchess/library/Session.h"
#include "quarnelchess/uci/Uci.h"
#include "support/LibraryRules.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quarnel::fuzz {
namespace {

void Hold(bool state, const char* what) {
    if (state) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Takes bytes off the front for numbers, as long as there are some.
unsigned Take(std::string_view& bytes) {
    if (bytes.empty()) return 0;
    const auto value = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    return value;
}

const char16_t* const Positions[] = {u"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
                                     u"r3k2r/pP1p1ppp/8/2pPp3/4P3/8/PPP2PpP/R3K2R w KQkq c6 0 1",
                                     u"8/k7/8/8/8/8/7K/8 b - - 0 1", u"8/8/8/8/8/8/8/8 w - - 0 1",
                                     u"QQQQkQQQ/8/8/8/8/8/8/4K3 b - - 0 1"};

void MoveText(std::string_view bytes) {
    const Position position = PositionOf(Positions[Take(bytes) % std::size(Positions)]);
    const auto side = static_cast<Truth>(Take(bytes) % 2 == 0 ? White : Black);
    const Text text = FromCodePage(bytes, 1252);
    LibraryRules rules;
    notation::MoveTextReader reader(rules);
    const MoveRec move = reader.SanToMoveRec(position, text, side);
    const Text longText = reader.SanToLongText(position, text, side);
    Hold(longText.size() <= std::max<std::size_t>(text.size() + 8, 8), "a long text is short");
    const MoveRec again = notation::LongTextToMoveRec(position, notation::MoveToLongText(position, move));
    Hold(again.Castle == move.Castle || again.FromFile == 0, "a move comes back from its text");
    Position played = position;
    quarnel_MakeMove(&played, &move);
    MoveList legal;
    quarnel_GetMove(&position, side == Black ? 1 : 0, &legal);
    const int found = engine::FindSan(position, bytes, legal);
    Hold(found >= -1 && found < legal.Count, "a move found is one of the list");
}

void PositionText(std::string_view bytes) {
    Text text = FromCodePage(bytes, 1252);
    Position position{};
    notation::FenToPosition(text, position);
    Text written = notation::PositionToFen(position);
    Position again{};
    notation::FenToPosition(written, again);
    Hold(std::memcmp(&position.Board, &again.Board, sizeof position.Board) == 0, "a board comes back from its text");
    if (const auto board = engine::ReadFen(bytes)) {
        const auto same = engine::ReadFen(engine::WriteFen(*board));
        Hold(same && same->PositionKey() == board->PositionKey(), "the engine's board comes back from its text");
    }
}

void GameRecord(std::string_view bytes) {
    monkey::Core core;
    core.Settle();
    core.Screen.Files["game.txt"] = bytes;
    core.Screen.DialogAnswers.assign(2, "game.txt");
    core.Choose(core.Game->Board.SubFileMenu[4]);
    core.Settle();
    const GameState& state = core.State();
    Hold(state.PlyNow >= 0 && state.PlyNow <= state.PlyCount, "the counters are in order");
    for (const MovesItem item : {BackOneItem, ForwardOneItem, BackToStartItem, ForwardOneItem, ForwardToEndItem}) {
        core.Choose(core.Moves(item));
        core.Settle();
    }
    Hold(state.PlyNow >= 0 && state.PlyNow <= state.PlyCount, "the counters stay in order");
    core.Choose(core.Game->Board.SubFileMenu[3]);
    core.Settle();
    Hold(core.HasWayOut(false), "a new game can be played");
}

void CommandLines(std::string_view bytes) {
    // Deadlines are over at once, so that nothing takes long.
    class QuickClock final : public engine::Clock {
      public:
        std::int64_t NowMs() override { return now_ += 50; }
        void SleepMs(int durationMs) override { now_ += durationMs; }

      private:
        std::atomic<std::int64_t> now_{1000};
    } clock;
    std::size_t said = 0;
    engine::Session* speaker = nullptr;
    engine::Session session(
        clock, [](bool) {},
        [&](int length) {
            Hold(static_cast<std::size_t>(length) == speaker->Text().size(), "the length is that of the text");
            ++said;
        });
    speaker = &session;
    session.Receive("adaptive 1M 1M 1M 1M 1M");
    session.Receive("skill 20 1");
    std::size_t lines = 2;
    while (!bytes.empty() && lines < 40) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        const std::string_view line = bytes.substr(0, end);
        // Sizes and threads that take long to be had.
        if (line.find("adaptive") == std::string_view::npos && line.find("mt") == std::string_view::npos) {
            session.Receive(line);
            session.Step();
            ++lines;
        }
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    session.Receive("force");
    for (int i = 0; i < 4; ++i) session.Step();
    Hold(!session.IsThinking() && said > 0, "\"force\" is answered");
}

void UciLines(std::string_view bytes) {
    engine::SteadyClock clock;
    engine::Uci uci(clock, [](std::string_view) {});
    uci.Obey("setoption name Hash value 1");
    for (int lines = 0; !bytes.empty() && lines < 20; ++lines) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        const std::string line(bytes.substr(0, end));
        const bool large = line.find("setoption") != std::string::npos;
        if (!large && !uci.Obey(line)) return;
        uci.Obey("stop");
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
}

void Records(std::string_view bytes) {
    Position position{};
    MoveRec move{};
    std::memcpy(&position, bytes.data(), std::min(bytes.size(), sizeof position));
    bytes.remove_prefix(std::min(bytes.size(), sizeof position));
    std::memcpy(&move, bytes.data(), std::min(bytes.size(), sizeof move));
    for (const int colour : {0, 1}) {
        quarnel_KingAttacked(&position, -colour);
        MoveList list;
        quarnel_GetMove(&position, static_cast<std::uint8_t>(colour), &list);
        for (int i = 0; i < list.Count; ++i) {
            Position next = position;
            quarnel_MakeMove(&next, &list.Moves[i]);
            Hold(next.SideToMove == position.SideToMove, "the side to move stays");
        }
    }
    quarnel_MakeMove(&position, &move);
}

void SettingsValues(std::string_view bytes) {
    for (const int page : {1252, 1251, 874, 1256}) {
        const Text text = FromCodePage(bytes, page);
        Hold(ToCodePage(text, page) == bytes, "bytes come back from a code page");
        const auto number = ToInteger16(text);
        Hold(!number || ToInteger16(ToText(*number)) == number, "a number comes back from its text");
        ToTruthValue(text);
        LeadingNumber(text);
        ToUtf8(text);
    }
    FromUtf8(std::string(bytes));
    CodePageOfLocale(bytes);
}

// A game comes back from PGN, and from a record where it has anything to record.
void HoldRoundTrips(const record::Game& game) {
    const auto same = [&](const record::Game& other) {
        const auto& moves = other.Moves();
        return other.BlackBegins() == game.BlackBegins() &&
               std::ranges::equal(moves, game.Moves(), {}, &record::Move::San, &record::Move::San);
    };
    const std::string pgn = record::WritePgn(game);
    const auto again = record::PgnReader(pgn).Next();
    Hold(again && same(*again) && record::WritePgn(*again) == pgn, "a game comes back from PGN");
    Hold(!game.FenAt(game.Plies()).empty(), "the last position has a text");
    if (!game.Moves().empty())
        Hold(same(record::ReadRecord(record::WriteRecord(game, true, 1), 1252)), "a game comes back from a record");
}

void Pgn(std::string_view bytes) {
    record::PgnReader reader(bytes);
    for (bool more = true; more;) {
        const std::size_t line = reader.Line();
        Hold(line <= bytes.size() + 1, "lines are counted");
        try {
            const auto game = reader.Next();
            more = game.has_value();
            if (more) HoldRoundTrips(*game);
        } catch (const record::Fault& fault) {
            Hold(fault.Line >= line && fault.Line <= bytes.size() + 1, "a fault has its line");
        }
    }
    try {
        HoldRoundTrips(record::ReadRecord(bytes, 1252));
    } catch (const record::Fault&) {
    }
}

constexpr Target All[] = {{"move-text", &MoveText},      {"position-text", &PositionText},
                          {"game-record", &GameRecord},  {"command-lines", &CommandLines},
                          {"uci-lines", &UciLines},      {"records", &Records},
                          {"settings", &SettingsValues}, {"pgn", &Pgn}};

} // namespace

std::span<const Target> Targets() {
    return All;
}

} // namespace quarnel::fuzz
