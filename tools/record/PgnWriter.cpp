#include "PgnWriter.h"

namespace quarnel::record {

namespace {

constexpr std::size_t MostLineLength = 79;

std::string TagPair(TextView name, TextView value) {
    Text escaped;
    for (const char16_t c : value) {
        if (c == u'"' || c == u'\\') escaped += u'\\';
        escaped += IsControl(c) ? u' ' : c;
    }
    return "[" + ToUtf8(name) + " \"" + ToUtf8(escaped) + "\"]\n";
}

// Words with blanks between them, or line ends where a line would become too long.
class Lines {
  public:
    void Add(const std::string& word) {
        const bool fits = length_ + 1 + word.size() <= MostLineLength;
        if (length_ > 0) text_ += fits ? ' ' : '\n';
        length_ = length_ > 0 && fits ? length_ + 1 + word.size() : word.size();
        text_ += word;
    }
    bool IsEmpty() const { return text_.empty(); }
    std::string Take() { return std::move(text_); }

  private:
    std::string text_;
    std::size_t length_ = 0; // of the last line
};

} // namespace

std::string WritePgn(const Game& game) {
    std::string pgn;
    for (std::size_t i = 0; i < TagCount; ++i) pgn += TagPair(TagNames[i], game.Tags[i]);
    pgn += TagPair(u"Result", game.Result);
    if (game.BlackBegins()) pgn += TagPair(u"SetUp", u"1") + TagPair(u"FEN", game.FenAt(1));
    Lines lines;
    for (std::size_t ply = game.BlackBegins() ? 1 : 0; const Move& move : game.Moves()) {
        if (ply % 2 == 0 || lines.IsEmpty()) lines.Add(std::to_string(ply / 2 + 1) + (ply % 2 == 0 ? "." : "..."));
        lines.Add(ToUtf8(move.San));
        ++ply;
    }
    lines.Add(ToUtf8(game.Result));
    return pgn + "\n" + lines.Take() + "\n\n";
}

} // namespace quarnel::record
