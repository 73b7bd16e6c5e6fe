#include "notation/MoveTextWriter.h"

#include "model/GameState.h"
#include "notation/MoveTextReader.h"
#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <sstream>

namespace quarnel::notation {
namespace {

// `cases` are pairs "long text>written", for the side to move of `placement`.
void Writes(const Text& placement, const std::string& cases) {
    LibraryRules rules;
    const Position position = PositionOf(placement + u" KQ - 0 1");
    std::istringstream words(cases);
    for (std::string word; words >> word;) {
        const auto middle = word.find('>');
        const Text written = LongTextToSan(rules, position, FromUtf8(word.substr(0, middle)), position.SideToMove);
        EXPECT_EQ(ToUtf8(written), word.substr(middle + 1)) << word << " in " << ToUtf8(placement);
    }
}

TEST(MoveTextWriter, WritesAsLittleAsTellsThePieceApart) {
    Writes(u"4k3/8/8/8/8/8/4K3/R6R w", "a1-d1>Rad1 h1-d1>Rhd1 a1-a5>Ra5");
    Writes(u"4k3/8/8/3R4/8/8/4K3/3R4 w", "d1-d3>R1d3 d5-d3>R5d3");
    Writes(u"4k3/8/8/3r4/8/3N4/4K3/3r4 b", "d1xd3>R1xd3");
    Writes(u"4k3/8/8/8/8/5N2/8/1N2K3 w", "b1-d2>Nbd2");
    Writes(u"8/8/8/1k6/4Q2Q/8/8/K6Q w", "h4-e1>Qh4e1 e4-e1>Qee1 h1-e1>Q1e1");
    // A pinned knight cannot be meant, nor can a bishop.
    Writes(u"4r1k1/8/8/8/8/8/4N3/1N2K3 w", "b1-c3>Nc3");
    Writes(u"4k3/8/8/8/8/5N2/1B6/4K3 w", "f3-e5>Ne5");
}

TEST(MoveTextWriter, WritesEveryKindOfMove) {
    // The long text alone tells a capture.
    Writes(u"4k3/8/5n2/8/3pP3/8/p7/4K3 b", "f6xe4>Nxe4 f6-e4>Ne4 d4xe3>dxe3 d4-d3>d3 a2-a1=Q>a1=Q");
    Writes(u"3r1k2/4P3/8/8/8/8/8/4K3 w", "e7xd8=R>exd8=R e7-e8=Q>e8=Q a3-a4> >");
    Writes(u"4k3/8/8/8/8/8/5p2/R3K2R w", "e1xf2>Kxf2 e1-g1>Kg1 o-o>O-O o-o-o>O-O-O 0-0>o-o 0-0-0>o-o-o");
    Writes(u"4k3/8/8/8/8/8/8/4K3 w", "1-0>1-0 1/2>1/2 ->- *>*");
}

TEST(MoveTextWriter, WithoutARuleServiceOnlyPawnsAndKingsAreWritten) {
    ListedRules missing;
    missing.Missing = true;
    const Position start = PositionOf(Text(StandardStart));
    EXPECT_EQ(LongTextToSan(missing, start, u"e2-e4", White), u"e4");
    EXPECT_EQ(LongTextToSan(missing, start, u"e1-e2", White), u"Ke2");
    EXPECT_EQ(LongTextToSan(missing, start, u"g1-f3", White), u"");
}

// Random games by the real rules: every position and every legal move, written and read again.
TEST(RoundTrip, EveryLegalMoveIsReadAsItIsWritten) {
    LibraryRules rules;
    MoveTextReader reader(rules);
    std::mt19937 random(20090701);
    std::set<std::pair<Truth, std::string>> met; // who met which kind of move
    const auto checkMove = [&](const Position& position, const MoveRec& move, Text& san) {
        const Truth side = position.SideToMove;
        const Text longText = MoveToLongText(position, move);
        const MoveRec again = LongTextToMove(position, longText);
        ASSERT_EQ(std::memcmp(&again, &move, sizeof move), 0) << ToUtf8(longText);
        san = LongTextToSan(rules, position, longText, side);
        for (const TextView mark : {u"", u"+", u"#", u"!?"}) {
            ASSERT_EQ(reader.SanToLongText(position, san + Text(mark), side), longText) << ToUtf8(san);
            ASSERT_EQ(reader.MoveTextError, 0);
        }
        ASSERT_TRUE(IsSameMove(reader.SanToMoveRec(position, san, side), move)) << ToUtf8(san);
        if (move.Castle != NoCastle) met.emplace(side, "castling");
        if (move.EpCapFile != 0) met.emplace(side, "in passing");
        if (move.Promote != NoPiece) met.emplace(side, "promotion");
        if (san[0] == u'Q' && san.size() >= 5 && !Contains(san, u"x")) met.emplace(side, "full origin");
    };
    for (const TextView start :
         {u"r3k2r/pppp2pp/2n2n2/4p2Q/q3P2q/2N2N2/PPPP2PP/R3K2R w KQkq - 0 1",
          u"r3k2r/p1p1p1pp/8/1P1P1P2/2p1p1p1/8/PP1P1P1P/R3K2R w KQkq - 0 1",
          u"4k3/PPPPpppp/8/8/8/8/ppppPPPP/4K3 w - - 0 1", u"Q2Q4/5k2/8/Q7/7q/8/2K5/4q2q w - - 0 1"}) {
        for (int game = 0; game < 6; ++game) {
            Position position = PositionOf(Text(start));
            for (int ply = 0; ply < 60; ++ply) {
                SCOPED_TRACE(ToUtf8(PositionToFen(position)));
                const Position again = PositionOf(PositionToFen(position));
                ASSERT_EQ(std::memcmp(&again, &position, sizeof position), 0);
                const MoveList list = GenerateMoves(rules, position, position.SideToMove);
                std::set<Text> written;
                for (int i = 0; i < list.Count; ++i) {
                    Text san;
                    ASSERT_NO_FATAL_FAILURE(checkMove(position, list.Moves[i], san));
                    ASSERT_TRUE(written.insert(san).second) << "written for two moves: " << ToUtf8(san);
                }
                if (list.Count == 0) break;
                rules.MakeMove(position, list.Moves[random() % list.Count]);
                position.SideToMove = Not(position.SideToMove);
            }
        }
    }
    EXPECT_EQ(met.size(), 8U) << "the games are worth something only when both sides met every kind of move";
}

} // namespace
} // namespace quarnel::notation
