// Smooth stretching of a picture, all of it or what has changed: area averages when it shrinks, interpolation when it
// grows, an exact copy when the sizes agree. The same bits on every platform, however often a part is stretched anew.
#pragma once

#include "platform/Surface.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quarnel {

/// Which source samples make up each sample of the result: `Taps` neighbours from `First[i]` on, which never falls.
struct Resampling {
    int Taps = 0;
    int SourceSize = 0;
    std::vector<int> First;
    std::vector<std::int16_t> Weights; ///< Taps for each result sample

    int FirstOf(int i) const { return First[static_cast<std::size_t>(i)]; }
    const std::int16_t* WeightsOf(int i) const { return Weights.data() + static_cast<std::ptrdiff_t>(i) * Taps; }
};

/// A picture that is kept stretched while it changes here and there.
class Stretcher {
  public:
    /// All sizes at least 1. True when they are others than before, and the result is undefined until all of it is
    /// updated.
    bool SetSizes(int sourceWidth, int sourceHeight, int width, int height);
    /// Stretches what depends on `part` of `source` anew; returns the part of the result that it is. The alpha byte is
    /// treated like a colour.
    Rectangle Update(const Surface& source, const Rectangle& part);
    const Surface& Result() const { return result_; }
    Surface TakeResult() { return std::move(result_); }

  private:
    Surface result_;
    Resampling across_;
    Resampling down_;
    bool isCopy_ = false;
    std::vector<std::int16_t> middle_; ///< stretched across only
    std::ptrdiff_t rowLength_ = 0;     ///< of `middle_`
    std::vector<std::int16_t> bundle_;
};

/// The top-left `sourceWidth` x `sourceHeight` of `source`, stretched to `width` x `height`.
Surface StretchBlt(const Surface& source, int sourceWidth, int sourceHeight, int width, int height);

} // namespace quarnel
