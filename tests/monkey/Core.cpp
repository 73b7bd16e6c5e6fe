#include "Core.h"

#include "display/BoardGeometry.h"
#include "notation/PositionText.h"

#include <algorithm>
#include <cstring>

namespace quarnel::monkey {

Core::Core() {
    current_ = this;
    Screen.TickStepMs = 40; // a slide takes a few passes
    Screen.Libraries[u"QuarnelChess"] = {{"quarnel_EngineStart", reinterpret_cast<void*>(&Start)},
                                         {"quarnel_ReceiveTxt", reinterpret_cast<void*>(&Receive)},
                                         {"quarnel_GetTxt", reinterpret_cast<void*>(&Get)},
                                         {"quarnel_GetMove", reinterpret_cast<void*>(&quarnel_GetMove)},
                                         {"quarnel_MakeMove", reinterpret_cast<void*>(&quarnel_MakeMove)},
                                         {"quarnel_KingAttacked", reinterpret_cast<void*>(&quarnel_KingAttacked)}};
    Engine.Say = [this](const std::string& line) {
        if (!Hears || Hears(line)) Tell(line);
    };
    Engine.ReadPosition = [](std::string_view text) {
        Position position{};
        Text fen = FromUtf8(std::string(text.substr(text.find_first_not_of(' '))));
        notation::FenToPosition(fen, position);
        return std::optional(position);
    };
    Game = std::make_unique<Program>(Screen);
    Game->Run();
}

Core::~Core() {
    Game.reset();
    current_ = nullptr;
}

// Returns at once: the steps below go on where the engine's loop would.
void Core::Start(QuarnelInputCallback, QuarnelOutputCallback) {}

// What the user does when the program waits for him: closes the box that is open, or lets the piece go.
void Core::Attend() {
    if (Screen.Script.size() > 64) return;
    const auto deed = [this] {
        if (Unasked && Unasked()) return;
        LetGo();
        FrmMsg& box = Game->Messages.Dialog();
        if (box.Visible.Get()) Screen.Click(box.Ok);
        // A step through the history in the middle of a drag leaves the piece with the pointer.
        if (Game->Controller.FloatPiece != 0 && Game->Controller.SelFile == 0) Choose(Game->Board.SubFileMenu[0]);
    };
    Screen.Script.assign(128, deed);
}

void Core::LetGo() {
    for (Form* form : {&Game->Board.Window, static_cast<Form*>(&Game->Messages.Dialog())}) {
        for (const PointerButton button : {PointerButton::Left, PointerButton::Right})
            Screen.Release(*form, 1, 1, button);
    }
}

void Core::Step() {
    Attend();
    received_.reset();
    Game->Bridge.InputCallback(0);
    const std::optional<std::string> line = std::exchange(received_, std::nullopt);
    Engine.Hear(line ? &*line : nullptr);
}

void Core::Drain() {
    while (Screen.PeekEvent() || Game->Commands.CommandCount > 0 || Engine.OwesNoMove) Step();
}

void Core::Tell(const std::string& line) {
    Attend();
    said_ = line;
    Game->Output.OutputCallback(static_cast<std::int32_t>(line.size()));
}

void Core::Settle() {
    for (int i = 0; i < 8; ++i) {
        Drain();
        Engine.Answer();
    }
}

std::pair<double, double> Core::Middle(Square square) {
    const PixelPoint corner = SquareCorner(square, State().BoardFlipped);
    return {(corner.X + 20) * State().Zoom, (corner.Y + 20) * State().Zoom};
}

void Core::Drag(const std::string& from, const std::string& to) {
    const auto at = [&](const std::string& name) { return Middle({name[0] - 'a' + 1, 9 - (name[1] - '0')}); };
    const auto [x, y] = at(from);
    const auto [toX, toY] = at(to);
    Form& window = Game->Board.Window;
    Screen.Move(window, x, y);
    Screen.Press(window, x, y);
    Screen.Move(window, toX, toY, PointerButton::Left);
    Screen.Release(window, toX, toY);
}

bool Core::DragLegalMove(unsigned choice) {
    MoveList legal;
    quarnel_GetMove(&State().CurPos, State().CurPos.SideToMove != 0 ? 1 : 0, &legal);
    if (legal.Count == 0) return false;
    const MoveRec& move = legal.Moves[choice % legal.Count];
    const auto name = [](int file, int row) {
        return std::string{static_cast<char>('a' + file - 1), static_cast<char>('9' - row)};
    };
    const int toFile = move.Castle != 0 ? CastleFile(move.Castle) : move.ToFile;
    Drag(name(move.FromFile, move.FromRow), name(toFile, move.Castle != 0 ? move.FromRow : move.ToRow));
    return true;
}

char Core::Controls() {
    std::string look;
    for (const MenuItem& item : Game->Board.Moves.SubMovesMenu) look += item.Enabled.Get() ? '1' : '0';
    for (const Control& button : Game->Board.Moves.poke) look += button.Visible.Get() ? '1' : '0';
    return look == "1111110111110" ? 'i' : look == "0000001000001" ? 't' : look == "0000000000000" ? 's' : '?';
}

std::string Core::WhatIsWrong() {
    const GameState& state = State();
    if (state.Thinking != False) return Engine.Thinking ? "it still thinks" : "it thinks for ever";
    if (Controls() != 'i') return "the controls are not idle";
    if (state.StopRequested != False || state.DiscardNextMove != False) return "a flag was left behind";
    if (state.PlyNow < 0 || state.PlyNow > state.PlyCount) return "the counters are wrong";
    const bool same = std::memcmp(&state.CurPos.Board, &Engine.Game.Board, sizeof state.CurPos.Board) == 0 &&
                      state.CurPos.SideToMove == Engine.Game.SideToMove;
    if (state.ResyncEngine == False && !same) return "engine and program have different boards";
    return {};
}

bool Core::HasWayOut(bool blackFirst) {
    LetGo();
    if (Game->Board.Picture1.Visible.Get()) Screen.Click(Game->Board.ctrl_SkinableButton1.pic_Button);
    for (int game = 0; game < 2; ++game) {
        Choose(Game->Board.SubFileMenu[blackFirst && game == 0 ? 1 : 0]);
        Settle();
    }
    Drag("e2", "e4");
    Settle();
    return State().PlyNow == 2 && WhatIsWrong().empty();
}

} // namespace quarnel::monkey
