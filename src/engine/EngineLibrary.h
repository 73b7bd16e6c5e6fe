// The engine library as the program calls it: rule service and playing engine.
//
// The exports are looked up when they are first called, so the rules work as soon as the library can
// be found at all. A call into a missing library does nothing. Program thread only.
#pragma once

#include "model/Rules.h"
#include "platform/Desktop.h"

#include <string>

namespace quarnel {

class EngineLibrary : public Rules {
  public:
    explicit EngineLibrary(Desktop& desktop) : desktop_(desktop) {}

    /// The handle kept from Probe(); 0 when the library could not be loaded. It only tells that.
    LibraryHandle EngineLib = 0;

    /// Tries to load the library, keeps the handle in EngineLib and releases it until that fails.
    void Probe();

    /// Runs the engine; returns only when it does.
    void EngineStart(QuarnelInputCallback input, QuarnelOutputCallback output);

    void ReceiveTxt(const Text& line);

    /// Replaces `buffer` (length + 1 characters) with the announced text; leaves it alone while
    /// EngineLib is 0.
    void FetchEngineOutput(Text& buffer);

    bool GetMove(const Position& position, Truth side, MoveList& list) override;
    bool MakeMove(Position& position, const MoveRec& move) override;
    bool KingAttacked(const Position& position, Truth side, Truth& attacked) override;

  private:
    template <class Function>
    struct Export {
        const char* Name;
        Function* Address = nullptr;
    };
    template <class Function>
    Function* Find(Export<Function>& symbol);

    Desktop& desktop_;
    Export<decltype(quarnel_EngineStart)> engineStart_{"quarnel_EngineStart"};
    Export<decltype(quarnel_ReceiveTxt)> receiveTxt_{"quarnel_ReceiveTxt"};
    Export<decltype(quarnel_GetTxt)> getTxt_{"quarnel_GetTxt"};
    Export<decltype(quarnel_GetMove)> getMove_{"quarnel_GetMove"};
    Export<decltype(quarnel_MakeMove)> makeMove_{"quarnel_MakeMove"};
    Export<decltype(quarnel_KingAttacked)> kingAttacked_{"quarnel_KingAttacked"};
};

} // namespace quarnel
