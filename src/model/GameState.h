// The one game's state: plain data with the program's established names.
//
// Owned by Program, read and written by every module above model/. Program thread only.
// NewGame resets what its comment says; all else lives as long as the program.
#pragma once

#include "base/Text.h"
#include "model/Position.h"

#include <array>
#include <vector>

namespace quarnel {

/// A row of the move history: the label "12.", White's move, Black's move.
using HistoryRow = std::array<Text, 3>;

/// A row of the alternative lines: columns 1 and 2 are used, as in a HistoryRow.
using VariationRow = std::array<Text, 3>;

/// The standard start position.
inline constexpr TextView StandardStart = u"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

struct GameState {
    // Reset by NewGame.
    Position CurPos{};                    ///< the position shown, in which the user moves
    Text GameStartFen;                    ///< where the game starts from; the position reader may rewrite it
    std::int16_t PlyNow = 0;              ///< plies from the game's start to CurPos
    std::int16_t PlyCount = 0;            ///< plies recorded in MoveText; 0 <= PlyNow <= PlyCount
    std::vector<HistoryRow> MoveText{1};  ///< row r is full move r; row 0 is never used
    std::vector<VariationRow> Variations; ///< alternative lines by ply, laid out like MoveText
    std::uint8_t LastMoveFile = 0;        ///< destination of the last move, marked on the board; 0 no mark
    std::uint8_t LastMoveRow = 0;

    // Kept from game to game.
    Position PrevPos{};            ///< CurPos before the user's move or the step forward that is being animated
    MoveRec LastMove{};            ///< the last move that a replay applied
    Text StartFen;                 ///< StandardStart, set at start-up
    Truth ComputerColor = 0;       ///< coded like Position::SideToMove; True: the computer plays Black
    Truth Thinking = False;        ///< the computer searches for its move
    Truth ResyncEngine = False;    ///< the engine's board differs from CurPos and must be sent again
    Truth BoardFlipped = False;    ///< Black is shown at the bottom
    Truth MoveBusy = False;        ///< a user move is being executed
    Truth DiscardNextMove = False; ///< the next move line belongs to an abandoned search
    Truth StopRequested = False;   ///< "force" has been sent for this search
    std::uint8_t ShowLastMove = 0; ///< last-move marks are kept after a user move; 1 from start-up on
    float Zoom = 1.0F;             ///< window pixels per frame pixel
};

/// What the hidden controller form keeps about the user's selection and drag.
struct ControllerState {
    std::int16_t SelFile = 0; ///< the selected square, or the last move's origin as a mark; file 0 none
    std::int16_t SelRow = 0;
    std::uint8_t PromotePiece = 0; ///< white piece code for the next promotion, Knight..Queen
    std::uint8_t FloatPiece = 0;   ///< piece code being dragged; 0 none. The drag loop runs while it is set
    std::int16_t DragLastX = 0;    ///< pointer position of the drag's last drawing, frame pixels
    std::int16_t DragLastY = 0;
    std::int32_t DragX = 0; ///< pointer position of the drag loop's current pass, frame pixels
    std::int32_t DragY = 0;
    std::int16_t PressFile = 0; ///< the last board press that passed the input checks
    std::int16_t PressRow = 0;
    std::int32_t CurrentX = 0; ///< where the pointer is now, frame pixels; stored by every pointer move
    std::int32_t CurrentY = 0;
};

} // namespace quarnel
