// What quarnel-record does with its files: reads the games of each and writes what was asked for.
#pragma once

#include "Game.h"
#include "Options.h"

#include <iosfwd>
#include <set>

namespace quarnel::record {

class Conversion {
  public:
    /// All of them must outlive it.
    Conversion(const Options& options, std::istream& in, std::ostream& out, std::ostream& messages)
        : options_(options), in_(in), out_(out), messages_(messages) {}

    /// The exit status: 0, or 1 when something could not be read or written.
    int Run();

  private:
    struct Input {
        std::string Name; ///< as messages tell it
        std::string Stem; ///< of the files made from it
    };
    void Convert(const Input& input, const std::string& bytes);
    void Take(const Input& input, std::size_t number, std::size_t line, const Game& game);
    std::string TextOf(const Input& input, std::size_t number, std::size_t line, const Game& game) const;
    void WriteFolder(const Input& input);
    void Write(const std::string& name, const std::string& bytes);
    void Complain(const std::string& file, std::size_t line, const std::string& reason);
    void Complain(const std::string& file, const std::string& reason);

    const Options& options_;
    std::istream& in_;
    std::ostream& out_;
    std::ostream& messages_;
    struct GameText {
        std::size_t Number;
        std::string Bytes;
    };
    std::vector<GameText> texts_; ///< of the games so far that belong into the next output
    std::set<std::string> written_;
    bool tooMany_ = false; ///< games for the one record; it has been told
    bool failed_ = false;
};

} // namespace quarnel::record
