/* The engine library's whole interface: three records, six functions, two callbacks.
 *
 * The records are plain bytes, exchanged by address; their sizes and offsets are fixed. Any bytes
 * may stand in them: the library never crashes on a strange record and never writes past one.
 * The three record functions may be called at any moment, from inside both callbacks too, while a
 * search runs. Everything happens on the caller's thread; the library's own search threads never
 * call back. No function throws. Valid C and C++.
 */
#ifndef QUARNEL_CHESS_H
#define QUARNEL_CHESS_H

#include <stdint.h>

#if defined(_WIN32)
#define QUARNEL_CALL __stdcall
#define QUARNEL_API
#else
#define QUARNEL_CALL
#define QUARNEL_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A position, 86 bytes. Piece codes: 0 empty, 1..6 white pawn, knight, bishop, rook, queen, king,
 * 7..12 the same for Black. Files 1..8 are a..h; row 1 is rank 8, row 8 is rank 1. */
typedef struct Position {
    uint8_t Board[9][9]; /* [row][file], so the square (file, row) is byte file + 9 * row; line 0 of both stays 0 */
    uint8_t EpFile;      /* 1..8: file of a pawn that has just advanced two squares; 0 none */
    uint8_t WhiteCastle; /* 0 none, 1 king side only, 2 queen side only, 3 both */
    uint8_t BlackCastle; /* the same for Black */
    int16_t SideToMove;  /* 0 White, -1 Black */
} Position;

/* A move, 8 bytes. An all-zero record is no move. */
typedef struct MoveRec {
    uint8_t FromFile;  /* 1..8 */
    uint8_t FromRow;   /* 1..8 */
    uint8_t ToFile;    /* 1..8; 0 in a castling move, which carries no destination */
    uint8_t ToRow;     /* 1..8; 0 in a castling move */
    uint8_t Castle;    /* 0 no, 1 king side, 2 queen side */
    uint8_t Promote;   /* code of the piece a pawn becomes, in the mover's colour; 0 none; 250..252 a game result */
    uint8_t EpCapFile; /* file of a pawn captured en passant; 0 none */
    uint8_t EpCapRow;  /* row of that pawn; 0 none */
} MoveRec;

/* Legal moves, 2049 bytes: entries 0 .. Count - 1 are meaningful. */
typedef struct MoveList {
    MoveRec Moves[256];
    uint8_t Count; /* 0..255 */
} MoveList;

/* Takes a command line. The low 16 bits of `wait` are nonzero when the engine is idle (or ponders)
 * and may be kept waiting until the user acts. */
typedef void(QUARNEL_CALL* QuarnelInputCallback)(int32_t wait);

/* Announces an output text of `length` characters, to be fetched with quarnel_GetTxt. */
typedef void(QUARNEL_CALL* QuarnelOutputCallback)(int32_t length);

/* Runs the engine on the calling thread; both callbacks are called from inside, on that thread.
 * Does not return while the process lives. */
QUARNEL_API void QUARNEL_CALL quarnel_EngineStart(QuarnelInputCallback input, QuarnelOutputCallback output);

/* Hands over one command line: 8-bit text, zero-terminated, no line feed. Called inside the input callback. */
QUARNEL_API void QUARNEL_CALL quarnel_ReceiveTxt(const char* line);

/* Copies the text just announced, with a final zero, into `buffer` of length + 1 bytes. */
QUARNEL_API void QUARNEL_CALL quarnel_GetTxt(char* buffer);

/* Fills `list` with the legal moves of the side `colour` (1 Black, 0 White), whoever's turn
 * `position` says it is. */
QUARNEL_API void QUARNEL_CALL quarnel_GetMove(const Position* position, uint8_t colour, MoveList* list);

/* Plays `move` on `position` in place; `SideToMove` stays as it is. An all-zero record and a result
 * code leave the position alone. */
QUARNEL_API void QUARNEL_CALL quarnel_MakeMove(Position* position, const MoveRec* move);

/* Nonzero when the king of the side `colour` (-1 Black, 0 White) is attacked. */
QUARNEL_API int16_t QUARNEL_CALL quarnel_KingAttacked(const Position* position, int32_t colour);

#ifdef __cplusplus
}
#endif

#endif
