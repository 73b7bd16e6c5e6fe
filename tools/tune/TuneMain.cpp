// quarnel-tune: fits the evaluation's weights to positions that quarnel-selfplay has written.
//
// The output has the comments of the compiled weights and the new numbers; it may be the same file.
#include "Tuner.h"
#include "WeightFile.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

using namespace quarnel::tuning;

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

/// What a piece is worth on an average square of those where it was seen.
void PrintMaterial(const char* title, const TrainingData& data, const SmoothWeights& weights) {
    std::vector<double> seen(weights.size());
    for (const Term term : data.Terms) seen[term.Weight] += std::abs(term.Count);
    std::printf("%s", title);
    for (int kind = 0; kind < 5; ++kind) {
        double mg = 0;
        double eg = 0;
        double sum = 0;
        for (int square = 0; square < 32; ++square) {
            const std::size_t index = quarnel::engine::SquareWeight + kind * 32 + square;
            mg += seen[index] * weights[index].Mg;
            eg += seen[index] * weights[index].Eg;
            sum += seen[index];
        }
        const std::size_t material = quarnel::engine::MaterialWeight + kind;
        if (sum > 0)
            std::printf("  %c %.0f/%.0f", "PNBRQ"[kind], weights[material].Mg + mg / sum,
                        weights[material].Eg + eg / sum);
    }
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    TunerOptions options;
    std::string weights;
    std::string output;
    std::vector<std::string> files;
    CLI::App app("Fits the evaluation's weights to positions of self-played games.");
    app.option_defaults()->always_capture_default();
    app.add_option("--share", options.SearchShare, "Of the search's value in the target; the result has the rest")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--pull", options.Pull, "Of the old weights, in positions");
    app.add_option("--step", options.StepCp, "The most that a weight moves in a batch, at first");
    app.add_option("--epochs", options.Epochs, "At most so many");
    app.add_option("--patience", options.Patience, "Epochs without gain before the step is halved");
    app.add_option("--batch", options.Batch, "Positions of a step")->check(CLI::PositiveNumber);
    app.add_option("--threads", options.Threads, "At a time");
    app.add_option("--seed", options.Seed, "Of the order of the positions");
    app.add_option("WEIGHTS", weights, "Weights.inc as it was compiled into this program")->required();
    app.add_option("OUTPUT", output, "Gets the new weights")->required();
    app.add_option("DATA", files, "Files of quarnel-selfplay")->required();
    CLI11_PARSE(app, argc, argv);
    const SmoothWeights start = CompiledWeights();
    const std::string present = ReadFile(weights);
    if (RewriteWeights(present, start) != present) {
        std::fprintf(stderr, "%s is not what this program was built with\n", weights.c_str());
        return 1;
    }
    TrainingData data;
    for (const std::string& file : files)
        if (!LoadTrainingData(file, data)) {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return 1;
        }
    const double k = FitK(data, start);
    std::printf("%zu positions to fit, %zu held out, %.1f terms each, K = %.5f\n", data.Fitted.size(),
                data.HeldOut.size(),
                static_cast<double>(data.Terms.size()) /
                    static_cast<double>(std::max<std::size_t>(1, data.Fitted.size() + data.HeldOut.size())),
                k);
    const SmoothWeights tuned = Tune(data, start, k, options, [](const Epoch& epoch) {
        std::printf("epoch %3d  fitted %.6f  held out %.6f\n", epoch.Number, epoch.FittedLoss, epoch.HeldOutLoss);
        std::fflush(stdout);
    });
    PrintMaterial("before:", data, start);
    PrintMaterial("after: ", data, tuned);
    std::ofstream file(output);
    file << RewriteWeights(present, tuned).value_or(present);
    return file.good() ? 0 : 1;
}
