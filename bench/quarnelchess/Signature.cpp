#include "Signature.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/search/Search.h"

#include <iterator>

namespace quarnel::engine {
namespace {

// Well-known test positions at both ends; between them, most pieces first, positions from games of the engine against
// itself.
constexpr const char* Positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r1bq1bnr/p1pk1ppp/1pn5/3pp1P1/5P2/2PP4/PP1QP2P/RNB1KBNR b KQ - 0 6",
    "rn1qkb1r/pp1bpp2/2p2n1p/3P4/P3P1p1/2Q2P2/1P1P2PP/RNB1KBNR w KQkq - 0 8",
    "rnbqkbr1/p2ppp2/np5p/2p1P3/2PP2BP/P1N5/RP3PP1/2BQK1NR w Kq - 0 12",
    "r1bq1rk1/ppp2ppp/2nb3n/3p4/3P4/PQNBPN2/1P1B1PPP/R4RK1 b - - 3 12",
    "2bqk2r/1p1n1pp1/2r2n1p/p1b1p3/8/3PPB1P/PP1N1PP1/R1BQK1NR b KQk - 3 12",
    "r1b1r1k1/ppq2ppp/n1p5/P2p4/1b6/1N1BP3/1PPN1PPP/R1BQK2R b KQ - 2 13",
    "r1bqk2r/1pp1b3/p1n1pn1p/5p2/3P1B2/5N2/PPP1NPP1/R2QKB1R b Qkq - 3 12",
    "r3r1k1/1bp1q2p/pp1p1np1/3P1p2/7B/2N2P1P/PPP1N3/1K1R1BR1 b - - 1 18",
    "r4kn1/pNp1q1p1/1p2b3/3rnp2/6Pp/3P4/PP1QP2P/R1B1KB1R b KQ g3 0 17",
    "r4rk1/1pp2pb1/p1n1p1p1/3p3p/3P1P2/PPN1PP2/1BP2K2/2R1R3 w - - 0 18",
    "r2qk1r1/2p1b2p/p1ppp1pB/4P3/2P4n/2N5/PP3PP1/R2Q1RK1 w - - 2 19",
    "r5k1/1p1bn1b1/2r4p/2qp1p2/1p3N1P/3BPNP1/P1P2PK1/1Q5R b - - 4 26",
    "3r1r2/1pp1n2k/p3pb2/3p4/P2P1Ppp/BP2P3/2P1NK2/3R3R w - - 0 26",
    "4k2r/p2r1pp1/2p5/P1b1p2p/4P3/2P2Q2/1PK3P1/R1B2B1q b k - 2 22",
    "2r1k3/5pp1/1p1bp3/pPnp4/5Pb1/P1N1B3/R1P1NK2/8 b - - 3 27",
    "r1b5/1p4k1/p1p5/4q2r/P2nB1pP/2NQ4/1PP3K1/2R4R b - - 1 23",
    "5k2/p3np2/1r4pr/4P3/2pN4/2Pb4/PP4BP/2KR3R w - - 3 27",
    "5r1k/p6p/1pbp3P/8/2P3Q1/1PqN1Pp1/P5P1/1K5R w - - 9 36",
    "4k2r/p5p1/P2r1p2/1Pp1p3/2B1P3/BKP1b2P/8/R7 w k - 1 31",
    "2r3r1/1p2kp2/p1q1p2p/4N3/P1BP4/1KP5/7P/RR6 b - - 3 28",
    "Q7/p1k2p2/1p2p1p1/4P2p/qP1Pp3/6PP/5P1K/8 b - - 0 34",
    "8/6pk/pq4rp/3Q4/4pB2/7P/P1p1KPP1/2R5 b - - 1 43",
    "2r2b2/4k1p1/p3p3/1pN5/1P1p1q2/P7/1K3PQ1/3R4 b - - 1 30",
    "5b2/2r5/p3p1k1/1p4p1/1P3q2/PN1R1P2/6Q1/1K6 w - - 1 35",
    "2k5/p7/1pb2B2/2p4p/2P1P3/1P6/P3r3/R3R1K1 b - - 3 32",
    "8/5pk1/1R4p1/P1P1n2p/3Nb3/6P1/6rP/3K4 b - - 0 36",
    "7r/pp1k4/2p4P/3p4/6p1/8/PP3PK1/7R w - - 0 34",
    "1k6/p7/1p3pb1/R6N/6pP/4P3/1r6/4K3 w - - 0 40",
    "5k2/2R5/5Np1/8/P1p5/1n3P2/6PK/2r5 w - - 3 44",
    "6k1/8/2R1p1pp/8/3pPKPP/3r4/8/8 b - - 1 35",
    "8/5kb1/R7/1pN5/1P4p1/P4r2/K7/8 w - - 0 42",
    "8/8/4k3/8/8/2KN1R2/5PP1/r7 w - - 1 59",
    "8/8/4k3/7p/R3P2r/5K2/8/8 w - - 2 44",
    "8/R7/6k1/8/8/1r6/5K2/8 b - - 58 82",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "4k3/8/8/8/8/8/4P3/4K3 w - - 0 1",
    "8/8/1p1k4/1P1p4/3P1K2/8/8/8 w - - 0 1",
    "8/5k2/8/3KP3/8/1r6/8/4R3 b - - 92 80",
};

// The last ones have few moves and are searched deeper, to where a passed turn is verified.
constexpr std::size_t Endings = 4;
constexpr int EndingDepthBonus = 5; // plies

} // namespace

std::uint64_t SignatureNodes(int depth) {
    SteadyClock clock;
    Search search(clock);
    search.SetHash(1);
    SearchLimits limits;
    std::uint64_t nodes = 0;
    for (std::size_t i = 0; i < std::size(Positions); ++i) {
        limits.Depth = depth + (i < std::size(Positions) - Endings ? 0 : EndingDepthBonus);
        nodes += search.Run({ReadFen(Positions[i]).value(), {}}, limits).Nodes;
    }
    return nodes;
}

} // namespace quarnel::engine
