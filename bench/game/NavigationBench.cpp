// Stepping through long games: how long a player waits, and that the wait grows with the game's length only.
//
// Prints milliseconds for "Back to start", "Back up one move" from the end, and "Forward to end" at 100 and
// 1,000 plies. The screen is a scripted one, so the figures are replay and drawing without a window.
#include "app/Program.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <benchmark/benchmark.h>

#include <random>

namespace quarnel {
namespace {

class Player {
  public:
    explicit Player(int plies) {
        screen_.Libraries[u"QuarnelChess"] = {{"quarnel_GetMove", reinterpret_cast<void*>(&quarnel_GetMove)},
                                              {"quarnel_MakeMove", reinterpret_cast<void*>(&quarnel_MakeMove)},
                                              {"quarnel_KingAttacked", reinterpret_cast<void*>(&quarnel_KingAttacked)}};
        Game.Run();
        while (Game.State.PlyNow < plies) PlayKnights();
    }

    void Step(NavigationCode code) { Game.Steps.MoveTAB(code, False); }

    ScriptedDesktop screen_;
    Program Game{screen_};

  private:
    // Knights that go out and home again: a game can be as long as one likes.
    void PlayKnights() {
        static constexpr const char16_t* Moves[] = {u"g1-f3", u"g8-f6", u"f3-g1", u"f6-g8"};
        const Text move = Moves[Game.State.PlyNow % 4];
        Position& position = Game.State.CurPos;
        Game.Recorder.RecordMove(move);
        Game.Library.MakeMove(position, notation::LongTextToMove(position, move));
        position.SideToMove = Not(position.SideToMove);
    }
};

void Navigate(benchmark::State& state, NavigationCode prepare, NavigationCode measured) {
    Player player(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        player.Step(prepare);
        state.ResumeTiming();
        player.Step(measured);
    }
}

BENCHMARK_CAPTURE(Navigate, BackToStart, ToEnd, ToStart)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Navigate, BackFromTheEnd, ToEnd, Back)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Navigate, ForwardToEnd, ToStart, ToEnd)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quarnel

BENCHMARK_MAIN();
