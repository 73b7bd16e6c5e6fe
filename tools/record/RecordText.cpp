#include "RecordText.h"

#include "notation/GameRecord.h"
#include "platform/CodePage.h"

namespace quarnel::record {

using namespace notation;

namespace {

/// Takes the texts of a record one by one.
class Replay {
  public:
    explicit Replay(Game& game) : game_(game) {}

    void Take(const Text& text, std::size_t line) {
        ++plies_;
        if (ended_) throw Fault(line, Quoted(text) + " stands behind the game's result");
        if (text.empty()) throw Fault(line, "a move is missing");
        if (text == u"-") {
            if (plies_ != 1) throw Fault(line, "\"-\" passes a turn in the middle of the game, which PGN cannot hold");
            game_.LetBlackBegin();
        } else if (const auto result = ResultOf(text)) {
            game_.Result = *result;
            ended_ = true;
        } else {
            game_.Play(text, Reading::AsTheProgram, line);
        }
    }
    bool HasEnded() const { return ended_; }

  private:
    Game& game_;
    std::size_t plies_ = 0;
    bool ended_ = false;
};

} // namespace

bool IsRecord(std::string_view bytes, int codePage) {
    std::size_t next = 0;
    const auto line = NextRecordLine(bytes, next);
    if (!line) return false;
    const auto names = RecordFields(FromCodePage(*line, codePage));
    return names.size() > 1 && PositionIn(u"[{(;%*0123456789", names[0][0]) == 0;
}

Game ReadRecord(std::string_view bytes, int codePage) {
    Game game;
    std::size_t next = 0;
    const auto header = NextRecordLine(bytes, next);
    const auto names = RecordFields(FromCodePage(header.value_or(""), codePage));
    if (names.empty()) throw Fault(1, "the line with the players is missing");
    const bool userIsWhite = UserIsWhite(names[0]);
    game.Tags[WhiteTag] = userIsWhite ? UserName : ProgramName;
    game.Tags[BlackTag] = userIsWhite ? ProgramName : UserName;

    Replay replay(game);
    int number = 0;
    while (const auto bytesOfLine = NextRecordLine(bytes, next)) {
        const auto line = static_cast<std::size_t>(++number) + 1;
        HistoryRow row;
        switch (ReadRecordRow(RecordFields(FromCodePage(*bytesOfLine, codePage)), number, row)) {
        case RowReading::OutOfSequence:
            throw Fault(line, "the line's number is not " + std::to_string(number));
        case RowReading::Incomplete:
            throw Fault(line, "a move line is a number and two move texts, with a tab before each");
        case RowReading::Read:
            break;
        }
        replay.Take(row[1], line);
        if (!row[2].empty() || next < bytes.size()) replay.Take(row[2], line);
    }
    if (number == 0) throw Fault(1, "there is no move line");
    if (!replay.HasEnded()) game.Result = game.Outcome();
    return game;
}

std::string WriteRecord(const Game& game, bool userIsWhite, std::size_t line) {
    std::vector<Text> texts;
    if (game.BlackBegins()) texts.emplace_back(u"-");
    for (const Move& move : game.Moves()) texts.push_back(move.San);
    const bool tellsResult = game.Result != u"*" && game.Result != game.Outcome();
    if (tellsResult) texts.push_back(game.Result);
    if (game.Moves().empty() && !tellsResult) throw Fault(line, "the game has no moves, and a record needs one");

    if (game.Tags[BlackTag] == UserName) userIsWhite = false;
    if (game.Tags[WhiteTag] == UserName) userIsWhite = true;
    Text record = RecordHeader(userIsWhite) + u"\r\n";
    if (texts.size() % 2 != 0) texts.emplace_back();
    for (std::size_t i = 0; i < texts.size(); i += 2) {
        record += RecordLine(static_cast<int>(i / 2 + 1), texts[i], texts[i + 1]) + u"\r\n";
    }
    return ToUtf8(record);
}

} // namespace quarnel::record
