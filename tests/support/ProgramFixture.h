// The whole program on the scripted desktop, against an engine that a test speaks for.
//
// The program is started and left where the engine's loop would go on, so a test reads as a dialogue: the
// user acts, the program's lines are pulled and compared, the engine says its line. Moves and checks are
// judged by the real engine library.
#pragma once

#include "app/Program.h"
#include "notation/PositionText.h"
#include "platform/scripted/ScriptedDesktop.h"
#include "support/LibraryRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quarnel {

/// The engine's side of the dialogue. One at a time.
class ScriptedEngine {
  public:
    ScriptedEngine() { current_ = this; }
    ~ScriptedEngine() { current_ = nullptr; }

    std::function<void()> Body;               ///< runs inside quarnel_EngineStart
    std::function<void(std::int32_t)> Input;  ///< calls the program for a line
    std::function<void(std::int32_t)> Output; ///< tells the program the length of what is said

    /// Calls the input callback once; returns the lines it brought.
    std::vector<std::string> PullOnce(std::int32_t wait = 0) {
        Input(wait);
        return std::exchange(received_, {});
    }
    /// Calls it until it brings no line.
    std::vector<std::string> Pull() {
        std::vector<std::string> all;
        for (auto lines = PullOnce(); !lines.empty(); lines = PullOnce()) all.push_back(lines.front());
        return all;
    }

    void Say(const std::string& text) {
        said_ = text;
        Output(static_cast<std::int32_t>(text.size()));
    }

    /// The exports as a library of the scripted desktop.
    static std::map<std::string, void*> Exports() {
        return {{"quarnel_EngineStart", reinterpret_cast<void*>(&Start)},
                {"quarnel_ReceiveTxt", reinterpret_cast<void*>(&Receive)},
                {"quarnel_GetTxt", reinterpret_cast<void*>(&Get)},
                {"quarnel_GetMove", reinterpret_cast<void*>(&quarnel_GetMove)},
                {"quarnel_MakeMove", reinterpret_cast<void*>(&quarnel_MakeMove)},
                {"quarnel_KingAttacked", reinterpret_cast<void*>(&quarnel_KingAttacked)}};
    }

  private:
    static void Start(QuarnelInputCallback input, QuarnelOutputCallback output) {
        current_->Input = input;
        current_->Output = output;
        current_->Body();
    }
    static void Receive(const char* line) { current_->received_.emplace_back(line); }
    static void Get(char* buffer) { std::copy(current_->said_.begin(), current_->said_.end(), buffer); }

    static inline ScriptedEngine* current_ = nullptr;
    std::vector<std::string> received_;
    std::string said_;
};

class ProgramTest : public testing::Test {
  protected:
    using Lines = std::vector<std::string>;

    ProgramTest() {
        Screen.Libraries[u"QuarnelChess"] = ScriptedEngine::Exports();
        Engine.Body = [this] { StartLines = Engine.Pull(); };
        Start();
    }

    ScriptedDesktop Screen;
    ScriptedEngine Engine;
    std::unique_ptr<Program> Game;

    /// Starts the program anew and pulls its first lines.
    void Start() {
        Game.reset();
        Game = std::make_unique<Program>(Screen);
        Game->Run();
        Engine.Input = [this](std::int32_t wait) { Game->Bridge.InputCallback(static_cast<std::int16_t>(wait)); };
        Engine.Output = [this](std::int32_t length) { Game->Output.OutputCallback(length); };
    }
    /// The same with another position on the board.
    void StartFrom(const Text& fen) {
        Start();
        State().CurPos = PositionOf(fen);
    }
    Lines StartLines;

    Form& Window() { return Game->Board.Window; }
    MenuItem& NewAsWhite() { return Game->Board.SubFileMenu[0]; }
    MenuItem& NewAsBlack() { return Game->Board.SubFileMenu[1]; }
    Text& Saved(const std::string& key) { return Screen.Settings["quarnel chess/settings/" + key]; }
    GameState& State() { return Game->State; }
    ControllerState& Controller() { return Game->Controller; }

    /// The middle of a square ("e4") in window pixels.
    std::pair<double, double> Middle(const std::string& square) {
        const Square place{square[0] - 'a' + 1, 9 - (square[1] - '0')};
        const PixelPoint corner = SquareCorner(place, State().BoardFlipped);
        return {(corner.X + 20) * State().Zoom, (corner.Y + 20) * State().Zoom};
    }
    void PressSquare(const std::string& square, PointerButton button = PointerButton::Left) {
        const auto [x, y] = Middle(square);
        Screen.Move(Window(), x, y);
        Screen.Press(Window(), x, y, button);
    }
    void ReleaseSquare(const std::string& square, PointerButton button = PointerButton::Left) {
        const auto [x, y] = Middle(square);
        Screen.Move(Window(), x, y, button);
        Screen.Release(Window(), x, y, button);
    }
    /// A press and a release on the same square.
    void ClickSquare(const std::string& square) {
        PressSquare(square);
        ReleaseSquare(square);
    }
    /// Two clicks, or a drag; the lines that the engine then gets.
    Lines ClickMove(const std::string& from, const std::string& to) {
        ClickSquare(from);
        ClickSquare(to);
        return Engine.Pull();
    }
    Lines DragMove(const std::string& from, const std::string& to) {
        PressSquare(from);
        ReleaseSquare(to);
        return Engine.Pull();
    }
    Lines Choose(MenuItem& item) {
        Screen.Click(item);
        return Engine.Pull();
    }
    /// Chooses the item in the middle of what comes next, when events are processed for the given time.
    void ChooseAtPass(int pass, MenuItem& item) {
        passesToGo_ = pass;
        Screen.BeforeProcess = [this, &item = item] {
            if (--passesToGo_ == 0) Screen.Click(item);
        };
    }
    Lines ChooseMoves(int index) { return Choose(Game->Board.Moves.SubMovesMenu[static_cast<std::size_t>(index)]); }

    /// A user move given by its squares, answered by the engine.
    void Exchange(const std::string& from, const std::string& to, const std::string& answer) {
        DragMove(from, to);
        SayMove(answer);
    }
    /// The engine's move line for the move about to be played.
    void SayMove(const std::string& move) {
        const std::string side = State().CurPos.SideToMove != White ? "Black(" : "White(";
        Engine.Say(side + std::to_string(State().PlyNow / 2 + 1) + "): " + move + " ");
    }

    std::string Fen() { return ToUtf8(notation::PositionToFen(State().CurPos)); }
    int FramesShown() { return Screen.Frames[&Window()].Count; }
    /// The state of the move controls: 'i'dle, 't'hinking, 's'topping, '?' anything else.
    char Controls() {
        const MoveControls& moves = Game->Board.Moves;
        std::string look;
        for (const MenuItem& item : moves.SubMovesMenu) look += item.Enabled.Get() ? '1' : '0';
        for (const Control& button : moves.poke) look += button.Visible.Get() ? '1' : '0';
        return look == "1111110111110" ? 'i' : look == "0000001000001" ? 't' : look == "0000000000000" ? 's' : '?';
    }
    /// The ply shown of those recorded, the strip, the marks of both ends ("--" for none), the lights that
    /// are on, and the move controls: "2/2 Move: Nf6 g8f6 lower i".
    std::string Look() {
        const auto name = [](int file, int row) {
            return file == 0 ? "--" : std::string{static_cast<char>('a' + file - 1), static_cast<char>('9' - row)};
        };
        const StatusStrip& status = Game->Board.Status;
        return std::to_string(State().PlyNow) + "/" + std::to_string(State().PlyCount) + " " +
               ToUtf8(status.mdis.Caption.Get()) + " " + name(Controller().SelFile, Controller().SelRow) +
               name(State().LastMoveFile, State().LastMoveRow) + (status.Picture4[0].Visible ? " lower" : "") +
               (status.Picture4[1].Visible ? " upper " : " ") + Controls();
    }

  private:
    int passesToGo_ = 0;
};

} // namespace quarnel
