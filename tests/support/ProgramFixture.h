// The whole program on the scripted desktop, against an engine that a test speaks for.
//
// Play() starts the program and runs the test's body where the engine's loop would be, so a test reads
// as a dialogue: the user acts, the program's lines are pulled and compared, the engine says its line.
// Moves and checks are judged by the real engine library.
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
    ScriptedEngine(const ScriptedEngine&) = delete;
    ScriptedEngine& operator=(const ScriptedEngine&) = delete;

    std::function<void()> Body; ///< runs inside quarnel_EngineStart

    /// Calls the input callback once; returns the lines it brought.
    std::vector<std::string> PullOnce(std::int32_t wait = 0) {
        input_(wait);
        return std::exchange(received_, {});
    }
    /// Calls it until it brings no line.
    std::vector<std::string> Pull() {
        std::vector<std::string> all;
        for (auto lines = PullOnce(); !lines.empty(); lines = PullOnce()) {
            all.insert(all.end(), lines.begin(), lines.end());
        }
        return all;
    }

    void Say(const std::string& text) {
        said_ = text;
        output_(static_cast<std::int32_t>(text.size()));
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
        current_->input_ = input;
        current_->output_ = output;
        current_->Body();
    }
    static void Receive(const char* line) { current_->received_.emplace_back(line); }
    static void Get(char* buffer) { std::copy(current_->said_.begin(), current_->said_.end(), buffer); }

    static inline ScriptedEngine* current_ = nullptr;
    QuarnelInputCallback input_ = nullptr;
    QuarnelOutputCallback output_ = nullptr;
    std::vector<std::string> received_;
    std::string said_;
};

class ProgramTest : public testing::Test {
  protected:
    using Lines = std::vector<std::string>;

    ProgramTest() { Screen.Libraries[u"QuarnelChess"] = ScriptedEngine::Exports(); }

    ScriptedDesktop Screen;
    ScriptedEngine Engine;
    std::unique_ptr<Program> Game;

    /// Starts the program; `body` runs inside the engine after the start-up lines were pulled.
    void Play(std::function<void()> body) {
        Engine.Body = [&, body = std::move(body)] {
            StartLines = Engine.Pull();
            body();
        };
        Start();
    }
    /// The same with another position on the board.
    void PlayFrom(Text fen, std::function<void()> body) {
        Play([&, fen, body = std::move(body)] {
            State().CurPos = PositionOf(fen);
            body();
        });
    }
    void Start() {
        Game.reset();
        Game = std::make_unique<Program>(Screen);
        Game->Run();
    }
    Lines StartLines;

    Form& Window() { return Game->Board.Window; }
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

    /// A user move given by its squares, answered by the engine; "" for an answer that does not come.
    void Exchange(const std::string& from, const std::string& to, const std::string& answer) {
        DragMove(from, to);
        const bool userIsWhite = State().ComputerColor == Black;
        if (!answer.empty()) SayMove(userIsWhite ? "Black" : "White", answer);
    }
    /// The engine's move line for the move about to be played.
    void SayMove(const std::string& side, const std::string& move) {
        Engine.Say(side + "(" + std::to_string(State().PlyNow / 2 + 1) + "): " + move + " ");
    }

    std::string Fen() { return ToUtf8(notation::PositionToFen(State().CurPos)); }
    std::string Strip() { return ToUtf8(Game->Board.Status.mdis.Caption.Get()); }
    std::string Row(std::size_t row) {
        const HistoryRow& cells = State().MoveText.at(row);
        return ToUtf8(cells[0] + u" " + cells[1] + u" " + cells[2]);
    }
    std::pair<int, int> Selected() { return {Controller().SelFile, Controller().SelRow}; }
    std::pair<int, int> LastMark() { return {State().LastMoveFile, State().LastMoveRow}; }
    int FramesShown() { return Screen.Frames[&Window()].Count; }
    bool LowerLight() { return Game->Board.Status.Picture4[0].Visible; }
    bool UpperLight() { return Game->Board.Status.Picture4[1].Visible; }
    /// The state of the move controls: 'i'dle, 't'hinking, 's'topping, '?' anything else.
    char Controls() {
        const MoveControls& moves = Game->Board.Moves;
        std::string look;
        for (const MenuItem& item : moves.SubMovesMenu) look += item.Enabled.Get() ? '1' : '0';
        look += ' ';
        for (const Control& button : moves.poke) look += button.Visible.Get() ? '1' : '0';
        if (look == "1111110 111110") return 'i';
        if (look == "0000001 000001") return 't';
        return look == "0000000 000000" ? 's' : '?';
    }

  private:
    int passesToGo_ = 0;
};

} // namespace quarnel
