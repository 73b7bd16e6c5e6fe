// quarnel-train: fits the evaluation's net to the positions that quarnel-selfplay has written.
//
// Every twentieth game is held out and only judged by. After each epoch the state is saved, so an ended run goes on
// where it was; a state of another seed, batch or data is not recognised, give it another name.
#include "NetTrainer.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

using namespace quarnel::tuning;
using namespace quarnel::engine;

namespace {

constexpr std::uint64_t HeldOutEvery = 20; // games
constexpr std::size_t ScaleSample = 500'000;

struct Options {
    TrainingOptions Training;
    std::vector<std::string> Folders;
    std::string StateFile;
    std::string NetFile;
    std::string StartNet;
};

struct Data {
    std::vector<PackedPosition> Fitted;
    std::vector<PackedPosition> HeldOut;
    std::size_t Games = 0;
    std::size_t Twice = 0;
};

/// Remembers by 64 mixed bits; of twenty million positions two would be taken for one with a chance of 1 to 100,000.
class SeenPositions {
  public:
    explicit SeenPositions(std::size_t most) : slots_(std::bit_ceil(most * 2 + 2), 0) {}
    bool Insert(const PackedPosition& position) {
        std::uint64_t words[3];
        std::memcpy(words, &position, sizeof words);
        std::uint64_t key = position.Side + 1U;
        for (const std::uint64_t word : words) {
            key = (key ^ word) * 0x9E3779B97F4A7C15ULL;
            key ^= key >> 29;
        }
        key |= key == 0;
        std::size_t slot = key & (slots_.size() - 1);
        for (; slots_[slot] != 0; slot = (slot + 1) & (slots_.size() - 1))
            if (slots_[slot] == key) return false;
        slots_[slot] = key;
        return true;
    }

  private:
    std::vector<std::uint64_t> slots_;
};

bool Load(const Options& options, Data& data) {
    std::vector<std::string> paths;
    std::uintmax_t bytes = 0;
    for (const std::string& folder : options.Folders)
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".qcp") {
                paths.push_back(entry.path().string());
                bytes += entry.file_size();
            }
    std::sort(paths.begin(), paths.end());
    SeenPositions seen(bytes / sizeof(PackedPosition));
    for (const std::string& path : paths) {
        const std::optional<Shard> shard = ReadShard(path);
        if (!shard) {
            std::fprintf(stderr, "%s is no file of positions or is damaged\n", path.c_str());
            return false;
        }
        data.Games += shard->Header.Games;
        for (const PackedPosition& position : shard->Positions) {
            if (!seen.Insert(position)) {
                ++data.Twice;
                continue;
            }
            const bool heldOut = (shard->Header.FirstGame + position.Game) % HeldOutEvery == 0;
            (heldOut ? data.HeldOut : data.Fitted).push_back(position);
        }
    }
    std::printf("%zu files, %zu games, %zu positions to fit, %zu held out, %zu left out as seen before\n", paths.size(),
                data.Games, data.Fitted.size(), data.HeldOut.size(), data.Twice);
    return true;
}

template <typename T>
bool WriteNumbers(std::ofstream& file, const std::vector<T>& numbers) {
    return static_cast<bool>(file.write(reinterpret_cast<const char*>(numbers.data()),
                                        static_cast<std::streamsize>(numbers.size() * sizeof(T))));
}

template <typename T>
bool ReadNumbers(std::ifstream& file, std::vector<T>& numbers) {
    return static_cast<bool>(
        file.read(reinterpret_cast<char*>(numbers.data()), static_cast<std::streamsize>(numbers.size() * sizeof(T))));
}

bool SaveState(const std::string& path, const TrainingState& state) {
    const std::string unfinished = path + ".part";
    {
        std::ofstream file(unfinished, std::ios::binary);
        file.write(reinterpret_cast<const char*>(&state.Step), sizeof state.Step);
        file.write(reinterpret_cast<const char*>(&state.Epoch), sizeof state.Epoch);
        if (!WriteNumbers(file, state.Net) || !WriteNumbers(file, state.Mean) || !WriteNumbers(file, state.Square))
            return false;
    }
    std::error_code error;
    std::filesystem::rename(unfinished, path, error);
    return !error;
}

bool LoadState(const std::string& path, TrainingState& state) {
    std::ifstream file(path, std::ios::binary);
    return file.read(reinterpret_cast<char*>(&state.Step), sizeof state.Step) &&
           file.read(reinterpret_cast<char*>(&state.Epoch), sizeof state.Epoch) && ReadNumbers(file, state.Net) &&
           ReadNumbers(file, state.Mean) && ReadNumbers(file, state.Square);
}

bool LoadNet(const std::string& path, WholeNet& net) {
    std::ifstream file(path, std::ios::binary);
    net.resize(net::NumberCount);
    return ReadNumbers(file, net);
}

/// How far the rounded net is from the other, over the held-out positions.
void ReportRounding(const SmoothNet& smooth, const WholeNet& whole, const std::vector<PackedPosition>& positions) {
    double sum = 0;
    double largest = 0;
    for (const PackedPosition& position : positions) {
        const double difference =
            std::abs(SmoothOutput(smooth, position) * whole[net::ScaleAt] - WholeValueCp(whole, position));
        sum += difference;
        largest = std::max(largest, difference);
    }
    std::printf("rounding moves a value by %.2f cp in the mean, by %.1f at most\n",
                sum / static_cast<double>(std::max<std::size_t>(positions.size(), 1)), largest);
}

bool Train(const Options& options, Data& data) {
    const TrainingOptions& training = options.Training;
    TrainingState state = TrainingState::Begin(training.Seed);
    WholeNet whole;
    if (!options.StartNet.empty()) {
        if (!LoadNet(options.StartNet, whole)) {
            std::fprintf(stderr, "%s is no net of this shape\n", options.StartNet.c_str());
            return false;
        }
        state = TrainingState::BeginWith(Unround(whole));
    }
    if (std::filesystem::exists(options.StateFile) && !LoadState(options.StateFile, state)) {
        std::fprintf(stderr, "%s is no state of a training\n", options.StateFile.c_str());
        return false;
    }
    std::printf("held-out loss %.6f before epoch %d\n", Loss(state.Net, data.HeldOut, training), state.Epoch + 1);
    while (state.Epoch < training.Epochs) {
        TrainEpoch(state, data.Fitted, training, [](int epoch, double share, double loss) {
            std::printf("epoch %d, %5.1f %%: loss %.6f\n", epoch, 100 * share, loss);
            std::fflush(stdout);
        });
        std::printf("epoch %d: held-out loss %.6f\n", state.Epoch, Loss(state.Net, data.HeldOut, training));
        if (!SaveState(options.StateFile, state)) {
            std::fprintf(stderr, "cannot write %s\n", options.StateFile.c_str());
            return false;
        }
    }
    whole = Round(state.Net, static_cast<int>(std::lround(training.ScaleCp)));
    data.HeldOut.resize(std::min<std::size_t>(data.HeldOut.size(), 100'000));
    ReportRounding(state.Net, whole, data.HeldOut);
    std::ofstream file(options.NetFile, std::ios::binary);
    if (WriteNumbers(file, whole) && file.flush()) return true;
    std::fprintf(stderr, "cannot write %s\n", options.NetFile.c_str());
    return false;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    options.Training.ScaleCp = 0;
    CLI::App app("Fits the evaluation's net to positions of self-played games.");
    app.option_defaults()->always_capture_default();
    app.add_option("--epochs", options.Training.Epochs, "Times that every position is seen");
    app.add_option("--batch", options.Training.BatchSize, "Positions in a step")->check(CLI::PositiveNumber);
    app.add_option("--threads", options.Training.Threads, "The same number gives the same net")
        ->check(CLI::Range(1, 64));
    app.add_option("--seed", options.Training.Seed, "Of the first weights and the order");
    app.add_option("--rate", options.Training.Rate, "Learning rate at the start");
    app.add_option("--value-share", options.Training.ValueShare, "Of the search's value in the target, 0 to 1");
    app.add_option("--scale", options.Training.ScaleCp, "Centipawns; 0: as the values foretell the results best");
    app.add_option("--start", options.StartNet, "A net to go on from");
    app.add_option("--state", options.StateFile, "Keeps the training")->required();
    app.add_option("--net", options.NetFile, "Gets the net")->required();
    app.add_option("FOLDER", options.Folders, "With positions")->required()->check(CLI::ExistingDirectory);
    CLI11_PARSE(app, argc, argv);
    Data data;
    if (!Load(options, data)) return 1;
    if (options.Training.ScaleCp <= 0) {
        const std::size_t sample = std::min(data.Fitted.size(), ScaleSample);
        options.Training.ScaleCp = std::round(FitScale({data.Fitted.data(), sample}));
    }
    std::printf("scale %.0f cp\n", options.Training.ScaleCp);
    return Train(options, data) ? 0 : 1;
}
