// The search's margins as variables, for a build of the engine in which they are no constants.
//
// Margins.h is turned into such variables when the tuner is built; the list comes from the same text.
#pragma once

#include <span>

namespace quarnel::tuning {

/// One of the numbers of Margins.h; exactly one of the pointers is set.
struct Margin {
    const char* Name;
    int* Whole;
    double* Real;

    double Value() const { return Whole != nullptr ? *Whole : *Real; }
    void Set(double value) const;
};

std::span<const Margin> Margins();

} // namespace quarnel::tuning
