// How many frames a second the board can be composed, and what the stretch to the window costs.

#include "display/PieceAnimation.h"
#include "platform/Stretch.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <benchmark/benchmark.h>

namespace quarnel {
namespace {

struct Board {
    Board() {
        LoadDesignedPictures(Pictures);
        Renderer.LoadBoard_S();
        CreateWorkSurfaces(Pictures);
        Renderer.ploca();
        Renderer.DrawCoordinates();
        Animation.Bitmaps_LoadPieces();
        for (int file = 1; file <= 8; ++file) {
            for (const int row : {1, 2, 7, 8})
                PieceAt(State.CurPos, file, row) = static_cast<std::uint8_t>(1 + (file + row) % 12);
        }
        Controller.SelFile = 5;
        Controller.SelRow = 7;
        State.LastMoveFile = 5;
        State.LastMoveRow = 5;
        State.ShowLastMove = 1;
        Status.mdis.Caption = u"Move: Qh5+";
    }

    GameState State;
    ControllerState Controller;
    BoardPictures Pictures;
    StatusStrip Status;
    Form FrmBoard{"FrmBoard", FormBorder::Framed};
    ScriptedDesktop Desktop;
    BoardRenderer Renderer{State, Controller, Pictures, Status, FrmBoard, Desktop};
    PieceAnimation Animation{State, Controller, Pictures, Renderer, FrmBoard, Desktop};
};

void ComposeFrame(benchmark::State& state) {
    Board board;
    for (auto _ : state) {
        board.Renderer.RedrawBoard();
        board.Desktop.Log.clear();
    }
    state.counters["frames"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(ComposeFrame);

void StretchFrame(benchmark::State& state) {
    Board board;
    board.Renderer.RedrawBoard();
    const int size = static_cast<int>(FrameWidth * state.range(0) / 100);
    for (auto _ : state) {
        benchmark::DoNotOptimize(StretchBlt(board.Pictures.buf[3], FrameWidth, FrameHeight, size, size));
    }
    state.counters["frames"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(StretchFrame)->ArgName("percent")->Arg(75)->Arg(100)->Arg(250);

} // namespace
} // namespace quarnel
