// Writes Weights.inc: the numbers are new, all else stays as it was.
#pragma once

#include "TrainingData.h"

#include <optional>
#include <string>

namespace quarnel::tuning {

/// `text` is the present file; its comments and line breaks are kept and each {middlegame, endgame} is
/// replaced, rounded to whole centipawns. Nothing when it does not hold exactly one pair for each weight.
std::optional<std::string> RewriteWeights(const std::string& text, const SmoothWeights& weights);

} // namespace quarnel::tuning
