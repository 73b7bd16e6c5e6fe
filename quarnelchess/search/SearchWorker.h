// One search thread's work: iterative deepening over its own stack, histories and evaluation.
//
// SearchWorker.cpp has the iterations and the root moves, SearchTree.cpp the tree below them, SearchLearning.cpp what
// its nodes teach.
#pragma once

#include "quarnelchess/evaluation/Evaluation.h"
#include "quarnelchess/search/History.h"
#include "quarnelchess/search/Reductions.h"
#include "quarnelchess/search/SearchTask.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace quarnel::engine {

struct RootMove {
    Move First;
    int Value = -InfiniteValue;
    int PreviousValue = -InfiniteValue; // of the iteration before
    int SelectiveDepth = 0;
    std::uint64_t Nodes = 0; // below it in the whole search
    std::vector<Move> Line;
};

class SearchWorker {
  public:
    /// `task` outlives the worker; `index` is its place among the threads, 0 the one that decides about time and
    /// reports.
    SearchWorker(SearchTask& task, int index);

    /// Forgets what it has learned.
    void Clear();
    /// Deepens until a limit or a stop.
    void Think();

    /// Ordered best first, as of the last iteration.
    const std::vector<RootMove>& RootMoves() const { return rootMoves_; }
    int CompletedDepth() const { return completedDepth_; }

  private:
    struct PlyState {
        Move Killers[2];
        Move Current; // the move being searched; no move after a passed turn
        bool CurrentIsQuiet = false;
        std::uint32_t Arrival = 0; // the piece that moved and its square
        Move Excluded;             // left out while its singularity is tested
        Continuation* Answers = nullptr;
        int StaticEval = NoValue;
        int Extensions = 0; // double extensions on the way here
        int Reduced = 0;    // plies that the move being searched is reduced by
        int Cutoffs = 0;    // among the answers to the moves of the node above
        int LineLength = 0;
        Move Line[MaxPly];
    };
    /// A node of the tree with what its steps have found out so far. Values in centipawns for the side to move.
    struct Node {
        const Board& Position;
        int Alpha;
        int Beta;
        int Depth;      // plies left
        int Ply;        // plies from the root
        bool IsCutNode; // expected to fail high

        bool IsRoot = Ply == 0;
        bool IsPv = Beta - Alpha > 1;
        bool InCheck = Position.InCheck();
        Move Excluded{}; // not to be searched: the node asks how good the others are

        bool Found = false; // `Entry` is what the table knows
        TableEntry Entry{};
        int TableValue = NoValue;
        Move TableMove{}; // at the root the best move so far
        bool WasPv = false;

        int RawEval = NoValue;    // as the evaluation gave it
        int Eval = NoValue;       // corrected by experience and by the table; NoValue in check
        bool IsImproving = false; // better off than at its own turn before
    };
    /// Moves that were tried before the one that cut off; of very many the first.
    struct TriedMoves : MoveArray<64> {
        void AddIfRoom(Move move) {
            if (Size() < Capacity) Add(move);
        }
    };
    /// What the moves of a node have brought so far.
    struct Progress {
        int BestValue = -InfiniteValue;
        Move Best{};
        int Count = 0;      // moves seen, pruned ones included
        int Overlooked = 0; // by a player with a handicap
        TriedMoves Quiets;
        TriedMoves Noisies;
    };
    /// A node that only looks whether something hangs.
    struct LeafNode {
        const Board& Position;
        int Alpha;
        int Beta;
        int Ply;
        bool IsPv = Beta - Alpha > 1;
        bool InCheck = Position.InCheck();
        int RawEval = NoValue;
        int Eval = NoValue;
        int BestValue = -MateValue + Ply;
        Move Best{};
    };
    /// One move of a node and what is known of it before it is searched.
    struct NodeMove {
        Move Played;
        bool IsNoisy;
        int Score; // of a quiet move as MovePicker has it, of a noisy one its own counter
        bool GivesCheck = false;
        int Extension = 0; // plies
    };

    // Iterations and root moves.
    void PrepareRoot();
    void SearchDepth(int depth);
    void SearchRootWindow(int depth, int previous);
    void CountRootNodes(Move move, std::uint64_t nodes);
    void RememberRootMove(Move move, int moveCount, int value, int alpha);
    void Report(int index) const;
    bool MateIsProven(int depth) const;
    bool IterationsSuffice(int depth);
    bool IsRootMove(Move move) const;

    // The tree. A step that returns a value has decided the node; it is 0 once the search is stopped.
    int SearchNode(const Board& board, int alpha, int beta, int depth, int ply, bool cutNode);
    std::optional<int> Enter(Node& node);
    std::optional<int> ProbeTable(Node& node);
    void SetStaticValue(Node& node);
    bool IsImproving(const Node& node) const;
    void CorrectDepth(Node& node) const;
    std::optional<int> CutWithoutMove(const Node& node);
    std::optional<int> Razor(const Node& node);
    std::optional<int> PassTurn(const Node& node);
    std::optional<int> ProbeCaptures(const Node& node);
    int SearchMoves(Node& node);
    bool IsLeftOut(const Node& node, Move move, Progress& progress) const;
    static bool MayPrune(const Node& node, const Progress& progress);
    static bool IsLate(const Node& node, const Progress& progress);
    bool IsPruned(const Node& node, const NodeMove& candidate, const Progress& progress) const;
    std::optional<int> ExtendSingular(const Node& node, NodeMove& candidate);
    void ExtendCheck(const Node& node, const Board& next, NodeMove& candidate) const;
    int SearchMove(const Node& node, const Board& next, const NodeMove& candidate, const Progress& progress);
    int Reduction(const Node& node, const NodeMove& candidate, int moveCount) const;
    int Conclude(const Node& node, const Progress& progress, int alphaBefore);
    int Quiesce(const Board& board, int alpha, int beta, int ply);
    bool IsHopeless(LeafNode& leaf, Move move, int moveCount) const;
    void SearchLeafMoves(LeafNode& leaf, Move tableMove);

    // Small steps.
    bool CountNodeAndCheckStop();
    /// By a player with a handicap.
    bool IsOverlooked(const Board& board, Move move) const {
        return !task_.Weakness.IsNone() && Overlooks(task_.Weakness, board, move, task_.Occasion);
    }
    bool IsDraw(const Board& board, int ply) const;
    int CorrectedEval(const Board& board, int ply, int rawEval) const;
    /// Tells the last two moves from others.
    std::uint32_t LineCode(int ply) const { return At(ply - 1).Arrival * 37 + At(ply - 2).Arrival * 1031; }
    void PlayInto(Board& next, const Board& board, Move move, int ply);
    void UpdateLine(int ply, Move move);

    // What nodes teach.
    void CorrectEval(const Node& node, const Progress& progress, Bound bound);
    void RewardCutoff(const Node& node, const Progress& progress);
    void RewardRefutation(const Board& board, int ply, int depth);
    void RewardTableCut(const Node& node);
    void RewardGain(const Node& node);
    void RewardSecondLook(const Node& node, const NodeMove& candidate, int depth, int value);
    void AddContinuation(Piece piece, Square to, int ply, int bonus);

    PlyState& At(int ply) { return stack_[ply + StackMargin]; }
    const PlyState& At(int ply) const { return stack_[ply + StackMargin]; }

    static constexpr int StackMargin = 4; // so that a node can look four plies back

    SearchTask& task_;
    const int index_;
    std::atomic<std::uint64_t>& nodes_;
    const ReductionTable reductions_;
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
