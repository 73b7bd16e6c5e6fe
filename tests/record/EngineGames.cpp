#include "EngineGames.h"

#include "monkey/Core.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/search/Search.h"

#include <random>

namespace quarnel {
namespace {

constexpr int MostPlies = 160;
constexpr int OpeningPlies = 8;

MoveRec ChooseMove(engine::Search& search, const Position& position, bool atRandom, std::mt19937& random) {
    const MoveList legal = [&] {
        MoveList list;
        quarnel_GetMove(&position, position.SideToMove == Black ? 1 : 0, &list);
        return list;
    }();
    if (legal.Count == 0) return {};
    if (atRandom) return legal.Moves[random() % legal.Count];
    const auto side = position.SideToMove == Black ? engine::Black : engine::White;
    engine::SearchRoot root;
    root.Position = engine::BoardFromRecord(position, side).value();
    engine::SearchLimits limits;
    limits.Nodes = 50;
    return engine::RecordFromMove(root.Position, search.Run(root, limits).Best);
}

} // namespace

std::vector<std::string> SavedEngineGames(int count) {
    monkey::Core core;
    engine::SteadyClock clock;
    engine::Search search(clock);
    search.SetHash(1);
    std::mt19937 random(11);
    std::vector<std::string> records;
    std::string& file = core.Screen.Files["game"];
    for (int number = 0; number < count; ++number) {
        file = number % 2 == 0 ? "\tWhite(You)\tBlack\r\n" : "\tWhite\tBlack(You)\r\n";
        file += number % 10 == 0 ? "1.\t-\te5\r\n" : "1.\te4\te5\r\n";
        core.Screen.DialogAnswers = {"game", "game"};
        core.Game->Files.LoadGame();
        search.NewGame();
        GameState& state = core.State();
        while (state.PlyNow < MostPlies) {
            const MoveRec move = ChooseMove(search, state.CurPos, state.PlyNow < OpeningPlies, random);
            if (move.FromFile == 0) break;
            core.Game->Recorder.RecordMove(notation::MoveToLongText(state.CurPos, move));
            quarnel_MakeMove(&state.CurPos, &move);
            state.CurPos.SideToMove = Not(state.CurPos.SideToMove);
        }
        core.Game->Files.SaveGame();
        records.push_back(file);
    }
    return records;
}

} // namespace quarnel
