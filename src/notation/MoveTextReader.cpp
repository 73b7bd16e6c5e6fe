#include "notation/MoveTextReader.h"

#include "base/Numbers.h"

#include <optional>

namespace quarnel::notation {

namespace {

constexpr TextView AllPieceLetters = u"PNBRQKZLTD";
constexpr TextView LocalPieceLetters = u"PZLTDK";
constexpr TextView AnnotationMarks = u"!?+-,#X";

// What ends the reading of a text at once.
struct Fault {};

bool IsOneOf(TextView table, char16_t c) {
    return PositionIn(table, c) != 0;
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

int DigitValue(char16_t c) {
    if (!IsDigit(c)) throw Fault();
    return c - u'0';
}

// The piece on the square. File 0 and row 0 exist and are empty, but a rank off the board is a fault.
int PieceOn(const Position& position, int file, int row) {
    if (row < 1 || row > 8) throw Fault();
    return PieceAt(position, file, row);
}

// One text on its way to long text. `s` is the working copy, which a fault gives back as it stands.
class Reading {
  public:
    Reading(Rules& rules, const Position& position, TextView text, Truth blackToMove)
        : s(text), rules_(rules), position_(position), side_(blackToMove) {}

    Text Read() {
        if (s.empty() || (IsResultText(s) && s != u"*")) return s;
        StripMarks();
        SplitPromotion();
        const Text lower = Lower(s);
        if (lower == u"o-o" || lower == u"0-0") return u"o-o";
        if (lower == u"o-o-o" || lower == u"0-0-0") return u"o-o-o";
        MarkCapture();
        if (side_ != White && side_ != Black) return {};
        return !s.empty() && IsOneOf(AllPieceLetters, s[0]) ? PieceMove() : PawnMove();
    }

    Text s;

  private:
    void StripMarks() {
        const auto last = s.find_last_not_of(AnnotationMarks);
        if (last == Text::npos) throw Fault();
        s.erase(last + 1);
    }

    void SplitPromotion() {
        if (IsOneOf(AllPieceLetters, s.back()) && !Contains(s, u"=")) s.insert(s.size() - 1, u"=");
        const auto equals = s.find(u'=');
        if (equals == Text::npos) return;
        promotion_ = s.substr(equals, 2);
        if (promotion_.size() == 2) {
            const int local = PositionIn(LocalPieceLetters, promotion_[1]);
            if (local != 0) promotion_[1] = PieceLetters[static_cast<std::size_t>(local - 1)];
        }
        s.erase(equals, 2);
    }

    void MarkCapture() {
        const auto colon = s.find(u':');
        if (colon != Text::npos) s[colon] = u'x';
        if (s.size() > 2 && IsOneOf(FileLetters, s[0]) && IsOneOf(FileLetters, s[1])) s.insert(1, u"x");
    }

    Text PawnMove() {
        if (Contains(s, u"x")) return PawnCapture();
        if (s.size() != 2) return {};
        return IsDigit(s[1]) ? PawnPush() : PawnFileCapture();
    }

    // "e4": the nearest own pawn behind the square, the square itself included.
    Text PawnPush() {
        const int file = PositionIn(FileLetters, s[0]);
        const int target = 9 - DigitValue(s[1]);
        const int step = side_ == White ? 1 : -1;
        const int last = side_ == White ? 7 : 2;
        const int pawn = Pawn + (side_ == White ? 0 : BlackOffset);
        for (int row = target; (last - row) * step >= 0; row += step) {
            if (PieceOn(position_, file, row) == pawn) return SquareText(file, row) + u"-" + s + promotion_;
        }
        return {};
    }

    // "ed": any legal pawn move between the files. White takes the last match in the list and Black
    // the first, so that the same text always reads the same.
    Text PawnFileCapture() {
        const MoveList list = LegalMoves();
        Text found;
        for (int i = 0; i < list.Count && (side_ == White || found.empty()); ++i) {
            const MoveRec& move = list.Moves[i];
            const bool matches = IsPieceKind(MovingPiece(move), Pawn) &&
                                 move.FromFile == PositionIn(FileLetters, s[0]) &&
                                 move.ToFile == PositionIn(FileLetters, s[1]) && PromotesAsWritten(move);
            if (matches) found = MoveToLongText(position_, move);
        }
        return found;
    }

    bool PromotesAsWritten(const MoveRec& move) const {
        if (promotion_.empty()) return true;
        const int letter = promotion_.size() == 2 ? PositionIn(PieceLetters, promotion_[1]) : 0;
        return move.Promote == letter + (side_ == Black ? BlackOffset : 0);
    }

    // "exd5": nothing is searched, so that an en-passant capture comes out the same way.
    Text PawnCapture() const {
        const int toRank = DigitValue(s.size() > 3 ? s[3] : u'\0');
        const int fromRank = toRank + (side_ == White ? -1 : 1);
        return s.substr(0, 1) + ToText(fromRank) + u"x" + s.substr(2, 2) + promotion_;
    }

    Text PieceMove() {
        const auto capture = s.find(u'x');
        if (capture != Text::npos) s.erase(capture, 1);
        switch (s.size()) {
        case 3:
            return SearchPiece(TextView(s).substr(1), u'\0');
        case 4:
            return SearchPiece(TextView(s).substr(2), s[1]);
        case 5:
            return Joined(s.substr(1, 2), TextView(s).substr(3));
        default:
            return {};
        }
    }

    Text SearchPiece(TextView to, char16_t disambiguation) {
        int piece = PositionIn(PieceLetters, s[0]);
        if (piece == 0) piece = PositionIn(LocalPieceLetters, s[0]);
        if (side_ == Black) piece += BlackOffset;
        const int toFile = PositionIn(FileLetters, to[0]);
        const int toRow = IsDigit(to[1]) ? 9 - (to[1] - u'0') : 0;
        const MoveList list = LegalMoves();
        for (int i = 0; i < list.Count; ++i) {
            const MoveRec& move = list.Moves[i];
            if (toFile == 0 || MovingPiece(move) != piece || move.ToFile != toFile || move.ToRow != toRow) continue;
            if (StartsAsWritten(move, disambiguation)) return Joined(SquareText(move.FromFile, move.FromRow), to);
        }
        return {};
    }

    static bool StartsAsWritten(const MoveRec& move, char16_t disambiguation) {
        if (disambiguation == u'\0') return true;
        const int file = PositionIn(FileLetters, disambiguation);
        if (file != 0) return move.FromFile == file;
        return 9 - move.FromRow == LeadingNumber(TextView(&disambiguation, 1));
    }

    Text Joined(const Text& from, TextView to) const {
        const int row = 9 - DigitValue(to[1]);
        const bool occupied = PieceOn(position_, PositionIn(FileLetters, to[0]), row) != NoPiece;
        return from + (occupied ? u"x" : u"-") + Text(to);
    }

    MoveList LegalMoves() {
        MoveList list{};
        if (!rules_.GetMove(position_, side_, list)) throw Fault();
        return list;
    }

    int MovingPiece(const MoveRec& move) const { return PieceAt(position_, move.FromFile, move.FromRow); }

    Rules& rules_;
    const Position& position_;
    Truth side_;
    Text promotion_; // "=Q", or empty
};

} // namespace

Text MoveTextReader::SanToLongText(const Position& position, TextView text, Truth blackToMove) {
    MoveTextError = 0;
    Reading reading(rules_, position, text, blackToMove);
    try {
        return reading.Read();
    } catch (const Fault&) {
        MoveTextError = 1;
        return reading.s;
    }
}

MoveRec MoveTextReader::SanToMoveRec(const Position& position, TextView text, Truth blackToMove) {
    return LongTextToMoveRec(position, SanToLongText(position, text, blackToMove));
}

} // namespace quarnel::notation
