/* Talks to the shared library as a program would: through its header, in C. Ends the process itself,
 * because the engine never returns. */
#include <QuarnelChess.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char* const Lines[] = {"ponder on", "mt = 2", "adaptive 10M 4M 64M 1M 16M", "new", "skill 100 1",
                                    "sync",      "e4"};
static size_t next_line = 0;
static int move_lines = 0;
static int empty_lines = 0; /* that play nothing */

static void Fail(const char* what) {
    fprintf(stderr, "failed: %s\n", what);
    exit(1);
}

static void CheckRules(void) {
    Position position = {.Board = {[1] = {[5] = 12}, [7] = {[4] = 1}, [8] = {[5] = 6}}};
    MoveList list;
    quarnel_GetMove(&position, 0, &list);
    if (list.Count != 6) Fail("two pawn moves and four king moves");
    quarnel_MakeMove(&position, &list.Moves[0]);
    if (position.SideToMove != 0) Fail("the side to move stays");
    if (quarnel_KingAttacked(&position, -1) != 0) Fail("no check");
}

static void QUARNEL_CALL Input(int32_t wait) {
    CheckRules();
    if (next_line < sizeof Lines / sizeof Lines[0])
        quarnel_ReceiveTxt(Lines[next_line++]);
    else if ((wait & 0xFFFF) != 0 && move_lines == 1 && empty_lines == 1)
        exit(0);
}

static void QUARNEL_CALL Output(int32_t length) {
    char text[64];
    CheckRules();
    if (length < 1 || length > 60) Fail("length");
    memset(text, '#', sizeof text);
    quarnel_GetTxt(text);
    if (text[length] != 0 || text[length + 1] != '#' || strlen(text) != (size_t)length) Fail("copied length");
    if (strcmp(text, "White(0): - ") == 0) {
        empty_lines++;
        return;
    }
    if (strncmp(text, "Black(1): ", 10) != 0 || text[length - 1] != ' ') Fail(text);
    move_lines++;
}

int main(void) {
    quarnel_EngineStart(Input, Output);
    Fail("the engine returned");
    return 1;
}
