// quarnel-tune: fits the evaluation's weights to positions that quarnel-selfplay has written.
//
//   quarnel-tune [options] WEIGHTS OUTPUT DATA...
//
// WEIGHTS is quarnelchess/evaluation/Weights.inc as it was compiled into this program; OUTPUT, which may be the same
// file, gets its comments and the new numbers. Options, each with a number: --share (of the search's value
// in the target, 0 to 1), --pull, --step, --epochs, --patience, --batch, --threads, --seed.
#include "Tuner.h"
#include "WeightFile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

using namespace quarnel::tuning;

namespace {

struct Options {
    TunerOptions Tuner;
    std::vector<std::string> Files;
};

bool Read(int argc, char** argv, Options& options) {
    TunerOptions& tuner = options.Tuner;
    const std::map<std::string, std::function<void(double)>> settings = {
        {"--share", [&](double value) { tuner.SearchShare = value; }},
        {"--pull", [&](double value) { tuner.Pull = value; }},
        {"--step", [&](double value) { tuner.StepCp = value; }},
        {"--epochs", [&](double value) { tuner.Epochs = static_cast<int>(value); }},
        {"--patience", [&](double value) { tuner.Patience = static_cast<int>(value); }},
        {"--batch", [&](double value) { tuner.Batch = static_cast<std::size_t>(std::max(1.0, value)); }},
        {"--threads", [&](double value) { tuner.Threads = static_cast<int>(value); }},
        {"--seed", [&](double value) { tuner.Seed = static_cast<std::uint64_t>(value); }},
    };
    for (int i = 1; i < argc; ++i) {
        const auto setting = settings.find(argv[i]);
        if (setting == settings.end()) {
            if (argv[i][0] == '-') return false;
            options.Files.emplace_back(argv[i]);
            continue;
        }
        if (++i == argc) return false;
        setting->second(std::strtod(argv[i], nullptr));
    }
    return options.Files.size() >= 3;
}

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
    Options options;
    if (!Read(argc, argv, options)) {
        std::fputs(
            "quarnel-tune [--share N] [--pull N] [--step N] [--epochs N] [--patience N] [--batch N] [--threads N]"
            " [--seed N] WEIGHTS OUTPUT DATA...\n",
            stderr);
        return 2;
    }
    const SmoothWeights start = CompiledWeights();
    const std::string present = ReadFile(options.Files[0]);
    if (RewriteWeights(present, start) != present) {
        std::fprintf(stderr, "%s is not what this program was built with\n", options.Files[0].c_str());
        return 1;
    }
    TrainingData data;
    for (std::size_t i = 2; i < options.Files.size(); ++i)
        if (!LoadTrainingData(options.Files[i], data)) {
            std::fprintf(stderr, "cannot read %s\n", options.Files[i].c_str());
            return 1;
        }
    const double k = FitK(data, start);
    std::printf("%zu positions to fit, %zu held out, %.1f terms each, K = %.5f\n", data.Fitted.size(),
                data.HeldOut.size(),
                static_cast<double>(data.Terms.size()) /
                    static_cast<double>(std::max<std::size_t>(1, data.Fitted.size() + data.HeldOut.size())),
                k);
    const SmoothWeights tuned = Tune(data, start, k, options.Tuner, [](const Epoch& epoch) {
        std::printf("epoch %3d  fitted %.6f  held out %.6f\n", epoch.Number, epoch.FittedLoss, epoch.HeldOutLoss);
        std::fflush(stdout);
    });
    PrintMaterial("before:", data, start);
    PrintMaterial("after: ", data, tuned);
    std::ofstream output(options.Files[1]);
    output << RewriteWeights(present, tuned).value_or(present);
    return output.good() ? 0 : 1;
}
