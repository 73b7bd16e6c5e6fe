#include "Conversion.h"

#include "PgnReader.h"
#include "PgnWriter.h"
#include "RecordText.h"
#include "platform/posix/PlainFiles.h"

#include <array>
#include <filesystem>
#include <iostream>
#include <utility>

namespace quarnel::record {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t MostBytes = std::size_t{64} << 20; // memory must not run out on a strange file

template <class Texts>
std::string Joined(const Texts& texts) {
    std::string all;
    for (const auto& text : texts) all += text.Bytes;
    return all;
}

std::string ReadStream(std::istream& in) {
    std::string bytes;
    std::array<char, 1 << 16> part{};
    while (bytes.size() < MostBytes && (in.read(part.data(), part.size()) || in.gcount() > 0))
        bytes.append(part.data(), static_cast<std::size_t>(in.gcount()));
    return bytes;
}

std::string WhyUnreadable(const fs::path& path) {
    std::error_code none;
    if (!fs::exists(path, none)) return "there is no such file";
    return fs::is_regular_file(path, none) ? "cannot be read" : "is no plain file";
}

// For a field of a listing: nothing in it ends the field or the line, or speaks to a terminal.
std::string FieldText(Text text) {
    for (char16_t& c : text) {
        if (IsControl(c)) c = u' ';
    }
    return ToUtf8(text);
}

std::string Listing(const std::string& file, std::size_t number, const Game& game, bool withMoves) {
    std::string text = file + '\t' + std::to_string(number) + '\t' + FieldText(game.Tags[WhiteTag]) + '\t' +
                       FieldText(game.Tags[BlackTag]) + '\t' + ToUtf8(game.Result) + '\t' +
                       std::to_string(game.Plies()) + '\n';
    std::size_t ply = game.Plies() - game.Moves().size();
    for (std::size_t i = 0; withMoves && i < game.Moves().size(); ++i) {
        const Move& move = game.Moves()[i];
        text += '\t' + std::to_string(++ply) + '\t' + ToUtf8(move.San) + '\t' + ToUtf8(move.Long) + '\n';
    }
    return text;
}

} // namespace

int Conversion::Run() {
    for (const std::string& name : options_.Inputs) {
        const bool standard = name == "-";
        const Input input{standard ? "standard input" : name, standard ? "game" : fs::path(name).stem().string()};
        const auto bytes = standard ? std::optional(ReadStream(in_)) : ReadPlainFile(name, MostBytes);
        if (bytes && bytes->size() < MostBytes) {
            Convert(input, *bytes);
        } else {
            Complain(input.Name, bytes ? "is larger than 64 MiB" : WhyUnreadable(name));
        }
        if (!options_.Folder.empty()) WriteFolder(input);
    }
    if (options_.Folder.empty() && !texts_.empty()) Write(options_.Output, Joined(texts_));
    return failed_ ? 1 : 0;
}

void Conversion::Convert(const Input& input, const std::string& bytes) {
    const auto wanted = [&](std::size_t number) { return number == options_.GameNumber.value_or(number); };
    std::size_t number = 0;
    const auto attempt = [&](const auto& next) {
        try {
            return next();
        } catch (const Fault& fault) {
            if (wanted(number)) Complain(input.Name, fault.Line, fault.what());
            return true;
        }
    };
    if (IsRecord(bytes, options_.CodePage)) {
        ++number;
        attempt([&] {
            if (wanted(number)) Take(input, number, 1, ReadRecord(bytes, options_.CodePage));
            return true;
        });
    } else {
        PgnReader reader(bytes);
        const auto next = [&] {
            ++number;
            const auto game = reader.Next();
            if (game && wanted(number)) Take(input, number, reader.Line(), *game);
            return game.has_value();
        };
        while (attempt(next)) {
        }
        --number; // the end was no game
    }
    if (number == 0)
        Complain(input.Name, "holds no game");
    else if (options_.GameNumber.value_or(1) > number)
        Complain(input.Name, "holds no game " + std::to_string(*options_.GameNumber));
}

void Conversion::Take(const Input& input, std::size_t number, std::size_t line, const Game& game) {
    const bool single = options_.What == Command::Record && options_.Folder.empty();
    if (single && !texts_.empty()) {
        if (std::exchange(tooMany_, true)) return;
        throw Fault(line, "a record holds one game, and here is another; --game=N takes one, --into=FOLDER all");
    }
    texts_.push_back({number, TextOf(input, number, line, game)});
}

std::string Conversion::TextOf(const Input& input, std::size_t number, std::size_t line, const Game& game) const {
    switch (options_.What) {
    case Command::Pgn:
        return WritePgn(game);
    case Command::Record:
        return WriteRecord(game, options_.UserIsWhite, line);
    case Command::Fen: {
        const std::size_t ply = options_.Ply.value_or(game.Plies());
        if (ply > game.Plies())
            throw Fault(line, "the game has no more than " + std::to_string(game.Plies()) + " plies");
        return ToUtf8(game.FenAt(ply)) + "\n";
    }
    default:
        return Listing(input.Name, number, game, options_.ShowMoves);
    }
}

// Of several records each has its game's number behind the name.
void Conversion::WriteFolder(const Input& input) {
    const auto texts = std::exchange(texts_, {});
    const bool records = options_.What == Command::Record;
    const std::string name = (fs::path(options_.Folder) / input.Stem).string();
    if (!records && !texts.empty()) Write(name + ".pgn", Joined(texts));
    for (std::size_t i = 0; records && i < texts.size(); ++i) {
        const std::string number = texts.size() > 1 ? "-" + std::to_string(texts[i].Number) : "";
        Write(name + number + ".txt", texts[i].Bytes);
    }
}

void Conversion::Write(const std::string& name, const std::string& bytes) {
    if (name == "-") {
        out_ << bytes << std::flush;
        if (!out_) Complain("standard output", "cannot be written");
        return;
    }
    std::error_code none;
    const OldFile old = options_.Force ? OldFile::Replace : OldFile::Keep;
    if (!written_.insert(name).second) {
        Complain(name, "has been written for another file of that name");
    } else if (!StorePlainFile(name, bytes, old)) {
        const bool kept = !options_.Force && fs::exists(fs::symlink_status(name, none));
        Complain(name, kept ? "is there already; --force replaces it" : "cannot be written");
    }
}

void Conversion::Complain(const std::string& file, std::size_t line, const std::string& reason) {
    Complain(file + ":" + std::to_string(line), reason);
}

void Conversion::Complain(const std::string& file, const std::string& reason) {
    messages_ << file << ": " << reason << '\n';
    failed_ = true;
}

} // namespace quarnel::record
