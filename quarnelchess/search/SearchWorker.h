// One search thread's work: iterative deepening over its own stack, histories and evaluation.
#pragma once

#include "quarnelchess/evaluation/Evaluation.h"
#include "quarnelchess/search/History.h"
#include "quarnelchess/search/Search.h"

namespace quarnel::engine {

struct RootMove {
    Move First;
    int Value = -InfiniteValue;
    int PreviousValue = -InfiniteValue; // of the iteration before
    int SelectiveDepth = 0;
    std::vector<Move> Line;
};

class SearchWorker {
  public:
    SearchWorker(Search& search, int index);

    void Clear();
    void ResizePawnCache(std::size_t bytes) { evaluation_.ResizePawnCache(bytes); }
    /// Deepens until a limit or a stop; worker 0 decides about time and reports.
    void Think();

    void ResetNodes() { nodes_.store(0, std::memory_order_relaxed); }
    std::uint64_t Nodes() const { return nodes_.load(std::memory_order_relaxed); }
    /// Ordered best first, as of the last iteration.
    const std::vector<RootMove>& RootMoves() const { return rootMoves_; }
    int CompletedDepth() const { return completedDepth_; }

  private:
    struct PlyState {
        Move Killers[2];
        Move Current; // the move being searched; no move after a passed turn
        bool CurrentIsQuiet = false;
        Move Excluded; // left out while its singularity is tested
        Continuation* Answers = nullptr;
        int StaticEval = NoValue;
        int Extensions = 0; // double extensions on the way here
        int LineLength = 0;
        Move Line[MaxPly];
    };
    /// Moves that were tried before the one that cut off.
    struct TriedMoves {
        Move Moves[64];
        int Count = 0;
        void Add(Move move) {
            if (Count < 64) Moves[Count++] = move;
        }
    };

    void PrepareRoot();
    void SearchDepth(int depth);
    void SearchRootWindow(int depth, int previous);
    int SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode);
    int Quiesce(const Board& board, int alpha, int beta, int ply);
    int SingularExtension(const Board& board, const TableEntry& entry, int tableValue, int beta, int depth, int ply,
                          bool cutNode, bool pv, int& cutValue);

    bool CountNodeAndCheckStop();
    bool IsDraw(const Board& board, int ply) const;
    int CorrectedEval(const Board& board, int rawEval) const;
    void PlayInto(Board& next, const Board& board, Move move, int ply);
    int QuietScore(const Board& board, Move move, int ply);
    void UpdateLine(int ply, Move move);
    void RewardCutoff(const Board& board, int ply, Move best, const TriedMoves& quiets, const TriedMoves& noisies,
                      int depth);
    void RewardRefutation(const Board& board, int ply, int depth);
    void AddContinuation(Piece piece, Square to, int ply, int bonus);
    void RememberRootMove(Move move, int moveCount, int value, int alpha);
    void Report(int index) const;
    bool MateIsProven(int depth) const;
    bool IterationsSuffice(int depth);

    PlyState& At(int ply) { return stack_[ply + StackMargin]; }
    const PlyState& At(int ply) const { return stack_[ply + StackMargin]; }

    static constexpr int StackMargin = 4; // so that a node can look four plies back

    Search& search_;
    const int index_;
    std::atomic<std::uint64_t> nodes_{0};
    Evaluation evaluation_;
    History history_;
    std::vector<RootMove> rootMoves_;
    std::size_t lineIndex_ = 0; // the root line being searched, 0 is the best
    int rootDepth_ = 0;
    int completedDepth_ = 0;
    int selectiveDepth_ = 0;
    int nullMoveFromPly_ = 0; // no passing before this ply, while a pass is being verified
    bool stopped_ = false;
    Move lastBest_;
    int stability_ = 0;     // iterations that kept the best move
    std::vector<Key> keys_; // of the game, then of the line being searched
    std::size_t gameKeys_ = 0;
    PlyState stack_[MaxPly + StackMargin + 4];
};

} // namespace quarnel::engine
