#include "TrainingData.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/evaluation/Evaluation.h"

#include <cstdlib>
#include <fstream>

namespace quarnel::tuning {
namespace {

constexpr std::size_t BlockLines = 1000;
constexpr std::size_t HeldOutEvery = 10; // blocks

bool AddSample(const std::string& line, bool heldOut, TrainingData& data) {
    const std::size_t first = line.find(';');
    const std::size_t second = line.find(';', first + 1);
    if (first == std::string::npos || second == std::string::npos) return false;
    const std::optional<engine::Board> board = engine::ReadFen(line.substr(0, first));
    if (!board) return false;
    engine::EvaluationTrace trace;
    engine::Evaluation::Explain(*board, trace);
    if (trace.Special) return false;

    Sample sample;
    sample.FirstTerm = static_cast<std::uint32_t>(data.Terms.size());
    for (int weight = 0; weight < engine::WeightCount; ++weight)
        if (trace.Counts[weight] != 0)
            data.Terms.push_back({static_cast<std::uint16_t>(weight), static_cast<std::int16_t>(trace.Counts[weight])});
    sample.TermCount = static_cast<std::uint32_t>(data.Terms.size()) - sample.FirstTerm;
    const float phase = static_cast<float>(trace.Phase) / engine::FullPhase;
    sample.MiddlegameShare = phase;
    sample.EndgameShare = (1 - phase) * static_cast<float>(trace.EndgameScale) / 64;
    sample.Result = std::strtof(line.c_str() + first + 1, nullptr);
    sample.ValueCp = std::strtof(line.c_str() + second + 1, nullptr);
    (heldOut ? data.HeldOut : data.Fitted).push_back(sample);
    return true;
}

} // namespace

SmoothWeights CompiledWeights() {
    SmoothWeights weights;
    weights.reserve(engine::WeightCount);
    for (const engine::Score& score : engine::Weights)
        weights.push_back({static_cast<double>(score.Mg), static_cast<double>(score.Eg)});
    return weights;
}

double TrainingData::Value(const Sample& sample, const SmoothWeights& weights) const {
    double mg = 0;
    double eg = 0;
    for (const Term term : TermsOf(sample)) {
        mg += term.Count * weights[term.Weight].Mg;
        eg += term.Count * weights[term.Weight].Eg;
    }
    return mg * sample.MiddlegameShare + eg * sample.EndgameShare;
}

bool LoadTrainingData(const std::string& path, TrainingData& data) {
    std::ifstream file(path);
    if (!file) return false;
    std::string line;
    for (std::size_t number = 0; std::getline(file, line); ++number)
        AddSample(line, number / BlockLines % HeldOutEvery == HeldOutEvery - 1, data);
    return true;
}

} // namespace quarnel::tuning
