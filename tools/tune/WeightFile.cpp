#include "WeightFile.h"

#include <cmath>
#include <sstream>

namespace quarnel::tuning {

std::optional<std::string> RewriteWeights(const std::string& text, const SmoothWeights& weights) {
    std::istringstream lines(text);
    std::ostringstream out;
    std::size_t next = 0;
    for (std::string line; std::getline(lines, line); out << '\n') {
        if (line.rfind("//", 0) == 0) {
            out << line;
            continue;
        }
        std::size_t end = 0;
        for (std::size_t open = line.find('{'); open != std::string::npos; open = line.find('{', end)) {
            const std::size_t close = line.find('}', open);
            if (close == std::string::npos || next == weights.size()) return std::nullopt;
            const SmoothScore& weight = weights[next++];
            out << line.substr(end, open - end) << '{' << std::lround(weight.Mg) << ", " << std::lround(weight.Eg)
                << '}';
            end = close + 1;
        }
        out << line.substr(end);
    }
    return next == weights.size() ? std::optional(out.str()) : std::nullopt;
}

} // namespace quarnel::tuning
