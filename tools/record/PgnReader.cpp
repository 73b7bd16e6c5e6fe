#include "PgnReader.h"

#include "model/GameState.h"
#include "platform/CodePage.h"
#include "quarnelchess/board/Fen.h"

#include <algorithm>

namespace quarnel::record {

namespace {

constexpr std::string_view Blanks = " \t\r\n\f\v";
constexpr std::string_view Delimiters = "()[]{};$*";

bool IsOneOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

// UTF-8 where the bytes are that, else Latin-1 as Windows extends it.
Text Decode(std::string_view bytes) {
    Text text = FromUtf8(bytes);
    if (ToUtf8(text) != bytes) text = FromCodePage(bytes, 1252);
    return text;
}

// "12.", "12...", "..." and "12" off the front of "12...e5".
void StripMoveNumber(Text& word) {
    const auto digits = std::min(word.find_first_not_of(u"0123456789"), word.size());
    const auto dots = std::min(word.find_first_not_of(u'.', digits), word.size());
    if (dots > digits || digits == word.size()) word.erase(0, dots);
}

void StripEnPassantMark(Text& word) {
    for (const TextView mark : {u"e.p.", u"ep"}) {
        if (word.ends_with(mark)) word.resize(word.size() - mark.size());
    }
}

std::string InLine(std::size_t line) {
    return " begun in line " + std::to_string(line);
}

// Whose move begins the game from the standard start position; throws for any other position.
Truth FirstToMove(const Text& fen, std::size_t line) {
    const auto board = engine::ReadFen(ToUtf8(fen));
    const std::string text = board ? engine::WriteFen(*board) : "";
    const std::string pieces = ToUtf8(StandardStart.substr(0, StandardStart.find(u' ')));
    if (text.starts_with(pieces + " w KQkq - ")) return White;
    if (text.starts_with(pieces + " b KQkq - ")) return Black;
    throw Fault(line, "the game begins from a position of its own, which a record cannot hold");
}

void RefuseVariant(const Text& variant, std::size_t line) {
    for (const TextView ordinary : {u"standard", u"chess", u"normal", u"from position", u"?", u""}) {
        if (Lower(variant) == ordinary) return;
    }
    throw Fault(line, "the variant " + Quoted(variant) + " is another game than standard chess");
}

} // namespace

PgnReader::PgnReader(std::string_view bytes) : bytes_(bytes) {
    if (bytes_.starts_with("\xEF\xBB\xBF")) bytes_.remove_prefix(3);
}

std::optional<Game> PgnReader::Next() {
    gameLine_ = line_;
    inTags_ = false;
    try {
        SkipBlanks();
        gameLine_ = line_;
        if (AtEnd()) return std::nullopt;
        return ReadGame();
    } catch (const Fault&) {
        SkipGame();
        throw;
    }
}

// A tag that begins its line; a comment's line may begin with a bracket, too, but not with such a name.
bool PgnReader::AtTag() const {
    const std::string_view rest = bytes_.substr(at_);
    return AtLineStart() && rest.size() > 1 && rest[0] == '[' && rest[1] >= 'A' && rest[1] <= 'Z';
}

char PgnReader::Take() {
    if (at_ - lineStart_ == MostLineBytes)
        throw Fault(line_, "the line is longer than " + std::to_string(MostLineBytes) + " bytes");
    const char c = bytes_[at_++];
    if (c == '\n' || (c == '\r' && Peek() != '\n')) {
        ++line_;
        lineStart_ = at_;
    }
    return c;
}

// However long it is.
void PgnReader::SkipLine() {
    at_ = std::min(bytes_.find_first_of("\r\n", at_), bytes_.size());
    if (AtEnd()) return;
    at_ += bytes_.substr(at_).starts_with("\r\n") ? 2 : 1;
    ++line_;
    lineStart_ = at_;
}

void PgnReader::SkipComment() {
    const std::size_t begin = line_;
    while (!AtEnd()) {
        if (Take() == '}') return;
    }
    throw Fault(begin, "the comment" + InLine(begin) + " has no end");
}

// With comments and the lines that "%" reserves for others.
void PgnReader::SkipBlanks() {
    while (!AtEnd()) {
        const char c = Peek();
        if (c == '{') {
            SkipComment();
        } else if (c == ';' || (c == '%' && AtLineStart())) {
            SkipLine();
        } else if (IsOneOf(Blanks, c)) {
            Take();
        } else {
            return;
        }
    }
}

// To the next game: over the rest of this one's tags, if it ended there, and over its moves.
void PgnReader::SkipGame() {
    if (inTags_) SkipLine();
    while (inTags_ && AtTag()) SkipLine();
    while (!AtEnd() && !AtTag()) SkipLine();
}

Game PgnReader::ReadGame() {
    inTags_ = true;
    const TagPairs tags = ReadTags();
    inTags_ = false;
    Game game;
    for (std::size_t i = 0; i < TagCount; ++i) {
        if (tags.Kept[i]) game.Tags[i] = *tags.Kept[i];
    }
    if (tags.Variant) RefuseVariant(*tags.Variant, tags.VariantLine);
    if (tags.SetUp == u"1" && !tags.Fen) throw Fault(gameLine_, "SetUp announces a position, and there is no FEN");
    if (tags.Fen && FirstToMove(*tags.Fen, tags.FenLine) == Black) game.LetBlackBegin();

    if (tags.Result) game.Result = ResultOf(*tags.Result).value_or(u"*");
    ReadMoves(game);
    return game;
}

PgnReader::TagPairs PgnReader::ReadTags() {
    TagPairs tags;
    const auto valueOf = [&](TextView name) -> std::optional<Text>* {
        const auto* kept = std::find(TagNames.begin(), TagNames.end(), name);
        if (kept != TagNames.end()) return &tags.Kept[static_cast<std::size_t>(kept - TagNames.begin())];
        if (name == u"FEN") tags.FenLine = line_;
        if (name == u"Variant") tags.VariantLine = line_;
        return name == u"Result"    ? &tags.Result
               : name == u"SetUp"   ? &tags.SetUp
               : name == u"FEN"     ? &tags.Fen
               : name == u"Variant" ? &tags.Variant
                                    : nullptr;
    };
    // A game without moves may have nothing between it and the next one, whose first tag is always this.
    const auto atNextGame = [&, first = at_] { return at_ > first && bytes_.substr(at_).starts_with("[Event "); };
    for (; Peek() == '[' && !atNextGame(); SkipBlanks()) {
        Take();
        SkipBlanks();
        const Text name = ReadWord();
        auto* value = valueOf(name);
        if (value != nullptr && *value) throw Fault(line_, "the tag " + Quoted(name) + " is given twice");
        SkipBlanks();
        Text text = ReadTagValue();
        if (value != nullptr) *value = std::move(text);
        SkipBlanks();
        if (Peek() != ']') throw Fault(line_, "the tag " + Quoted(name) + " has no end");
        Take();
    }
    return tags;
}

Text PgnReader::ReadTagValue() {
    constexpr const char* Form = "a tag has the form [Name \"value\"]";
    std::string bytes;
    const std::size_t begin = line_;
    if (Peek() != '"') throw Fault(line_, Form);
    for (Take(); !AtEnd() && Peek() != '"';) {
        char c = Take();
        if (c == '\\' && !AtEnd()) c = Take();
        bytes += c;
    }
    if (AtEnd() || line_ != begin) throw Fault(begin, Form);
    Take();
    return Decode(bytes);
}

void PgnReader::ReadMoves(Game& game) {
    for (SkipBlanks(); !AtEnd() && Peek() != '['; SkipBlanks()) {
        if (Peek() == '(') {
            SkipVariation();
        } else if (Peek() == '$') {
            Take();
            while (Peek() >= '0' && Peek() <= '9') Take();
        } else if (!PlayWord(game, ReadWord())) {
            return;
        }
    }
}

// What stands in the variation is not looked at, but for where it ends.
void PgnReader::SkipVariation() {
    const std::size_t begin = line_;
    int depth = 0;
    for (; !AtEnd() && !AtTag(); SkipBlanks()) {
        const char c = Take();
        if (c == '(' && ++depth > MostNesting)
            throw Fault(line_, "variations stand more than " + std::to_string(MostNesting) + " deep in each other");
        if (c == ')' && --depth == 0) return;
    }
    throw Fault(begin, "the variation" + InLine(begin) + " has no end");
}

// Up to the next blank or delimiter; a "*" is a word by itself.
Text PgnReader::ReadWord() {
    const std::size_t begin = at_;
    while (!AtEnd() && !IsOneOf(Blanks, Peek()) && !IsOneOf(Delimiters, Peek()) && Peek() != '"') Take();
    if (at_ == begin && Peek() == '*') Take();
    Text word = Decode(bytes_.substr(begin, at_ - begin));
    if (word.empty()) throw Fault(line_, Quoted(Decode(bytes_.substr(at_, 1))) + " is out of place");
    return word;
}

// False when the word ends the game.
bool PgnReader::PlayWord(Game& game, Text word) const {
    if (const auto result = ResultOf(word)) {
        game.Result = *result;
        return false;
    }
    StripMoveNumber(word);
    StripEnPassantMark(word);
    if (word == u"--" || word == u"Z0") throw Fault(line_, "a turn is passed, which a record cannot hold");
    if (word.find_first_not_of(u"!?+#=") != Text::npos) game.Play(word, Reading::Strict, line_);
    return true;
}

} // namespace quarnel::record
