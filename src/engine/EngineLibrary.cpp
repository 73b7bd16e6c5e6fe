#include "engine/EngineLibrary.h"

namespace quarnel {

namespace {

constexpr TextView LibraryName = u"QuarnelChess";

} // namespace

template <class Function>
Function* EngineLibrary::Find(Export<Function>& symbol) {
    if (symbol.Address == nullptr) {
        symbol.Address = reinterpret_cast<Function*>(desktop_.FindSymbol(Text(LibraryName), symbol.Name));
    }
    return symbol.Address;
}

void EngineLibrary::Probe() {
    EngineLib = desktop_.LoadLibrary(Text(LibraryName));
    while (desktop_.ReleaseLibrary(EngineLib)) {
    }
}

void EngineLibrary::EngineStart(QuarnelInputCallback input, QuarnelOutputCallback output) {
    if (auto* start = Find(engineStart_)) start(input, output);
}

void EngineLibrary::ReceiveTxt(const Text& line) {
    if (auto* receive = Find(receiveTxt_)) receive(desktop_.ToBytes(line).c_str());
}

void EngineLibrary::FetchEngineOutput(Text& buffer) {
    if (EngineLib == 0) return;
    if (auto* get = Find(getTxt_)) {
        std::string bytes = desktop_.ToBytes(buffer);
        get(bytes.data());
        buffer = desktop_.FromBytes(bytes);
    }
}

bool EngineLibrary::GetMove(const Position& position, Truth side, MoveList& list) {
    auto* getMove = Find(getMove_);
    if (getMove == nullptr) return false;
    getMove(&position, side == Black ? 1 : 0, &list);
    return true;
}

bool EngineLibrary::MakeMove(Position& position, const MoveRec& move) {
    auto* makeMove = Find(makeMove_);
    if (makeMove == nullptr) return false;
    makeMove(&position, &move);
    return true;
}

bool EngineLibrary::KingAttacked(const Position& position, Truth side, Truth& attacked) {
    auto* kingAttacked = Find(kingAttacked_);
    if (kingAttacked == nullptr) return false;
    attacked = ToTruth(kingAttacked(&position, side) != 0);
    return true;
}

} // namespace quarnel
