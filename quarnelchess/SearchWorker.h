// One search thread's work: iterative deepening over its own stack, histories and evaluation.
#pragma once

#include "Evaluation.h"
#include "History.h"
#include "Search.h"

namespace quarnel::engine {

struct RootMove {
    Move First;
    int Value = -InfiniteValue;
    int PreviousValue = -InfiniteValue;
    int SelectiveDepth = 0;
    std::vector<Move> Line;
};

class SearchWorker {
  public:
    SearchWorker(Search& search, int index);

    void Clear();
    /// Deepens until a limit or a stop; worker 0 decides about time and reports.
    void Think();

    std::uint64_t Nodes() const { return nodes_.load(std::memory_order_relaxed); }
    /// Ordered best first, as of the last completed or usefully interrupted iteration.
    const std::vector<RootMove>& RootMoves() const { return rootMoves_; }
    int CompletedDepth() const { return completedDepth_; }

  private:
    struct PlyState {
        Move Killers[2];
        Move Current;
        int StaticEval = NoValue;
        int LineLength = 0;
        Move Line[MaxPly];
    };

    void PrepareRoot();
    void SearchDepth(int depth);
    int SearchRootWindow(int depth, int previous);
    int SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode);
    int Quiesce(const Board& board, int alpha, int beta, int ply);

    bool CountNodeAndCheckStop();
    bool IsDraw(const Board& board, int ply) const;
    void UpdateLine(int ply, Move move);
    void RewardQuiet(const Board& board, int ply, Move best, const Move* tried, int triedCount, int depth);
    void Report(int index) const;
    bool MateIsProven(int depth) const;

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
    bool stopped_ = false;
    std::vector<Key> keys_; // game and search path, the current position last
    PlyState stack_[MaxPly + 4];
};

} // namespace quarnel::engine
