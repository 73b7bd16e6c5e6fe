#include "NetTrainer.h"

#include <algorithm>
#include <barrier>
#include <bit>
#include <cmath>
#include <functional>
#include <numeric>
#include <random>
#include <thread>

namespace quarnel::tuning {

using namespace engine::net;

namespace {

constexpr float MeanDecay = 0.9F;
constexpr float SquareDecay = 0.999F;
constexpr float Smallest = 1e-8F; // keeps the quotient finite
constexpr double RateFloor = 0.01;
constexpr std::uint64_t BatchesBetweenReports = 100;
constexpr int Lanes = 16; // partial sums, so that the compiler can use wide vectors

double Sigmoid(double x) {
    return 1 / (1 + std::exp(-x));
}

double TargetOf(const PackedPosition& position, const TrainingOptions& options) {
    return options.ValueShare * Sigmoid(position.ValueCp / options.ScaleCp) +
           (1 - options.ValueShare) * position.Result / 2;
}

struct HiddenLayer {
    alignas(64) float Sum[2][Hidden];   // before clipping, own view first
    alignas(64) float Value[2][Hidden]; // clipped and squared
};

void AddRow(float* __restrict to, const float* __restrict row) {
    for (int i = 0; i < Hidden; ++i) to[i] += row[i];
}

float Dot(const float* __restrict a, const float* __restrict b) {
    float partial[Lanes] = {};
    for (int i = 0; i < Hidden; i += Lanes)
        for (int lane = 0; lane < Lanes; ++lane) partial[lane] += a[i + lane] * b[i + lane];
    float sum = 0;
    for (const float lane : partial) sum += lane;
    return sum;
}

/// Fills `layer` and gives the output.
float Forward(const float* net, const ActiveInputs& inputs, HiddenLayer& layer) {
    const std::uint16_t* const active[2] = {inputs.Own, inputs.Other};
    const int set = OutputSet(inputs.Count);
    float output = net[OutputBiasAt + static_cast<std::size_t>(set)];
    for (int view = 0; view < 2; ++view) {
        float* const sum = layer.Sum[view];
        std::copy_n(net + HiddenBiasAt, Hidden, sum);
        for (int i = 0; i < inputs.Count; ++i)
            AddRow(sum, net + InputWeightsAt + std::size_t{active[view][i]} * Hidden);
        float* const value = layer.Value[view];
        for (int i = 0; i < Hidden; ++i) {
            const float clipped = std::min(std::max(sum[i], 0.0F), 1.0F);
            value[i] = clipped * clipped;
        }
        output += Dot(value, net + OutputWeightsAt + static_cast<std::size_t>((set * 2 + view) * Hidden));
    }
    return output;
}

/// Adds what the position says about each number to `gradient`.
void Backward(const float* net, const ActiveInputs& inputs, const HiddenLayer& layer, float slope, float* gradient) {
    const std::uint16_t* const active[2] = {inputs.Own, inputs.Other};
    const int set = OutputSet(inputs.Count);
    gradient[OutputBiasAt + static_cast<std::size_t>(set)] += slope;
    for (int view = 0; view < 2; ++view) {
        const std::size_t at = OutputWeightsAt + static_cast<std::size_t>((set * 2 + view) * Hidden);
        const float* __restrict weights = net + at;
        float* __restrict own = gradient + at;
        const float* __restrict sum = layer.Sum[view];
        const float* __restrict value = layer.Value[view];
        alignas(64) float back[Hidden];
        for (int i = 0; i < Hidden; ++i) {
            own[i] += slope * value[i];
            const float inside = sum[i] > 0 && sum[i] < 1 ? sum[i] : 0.0F;
            back[i] = slope * weights[i] * 2 * inside;
        }
        AddRow(gradient + HiddenBiasAt, back);
        for (int i = 0; i < inputs.Count; ++i)
            AddRow(gradient + InputWeightsAt + std::size_t{active[view][i]} * Hidden, back);
    }
}

/// Of the positions that `order` names: the sum of losses; the gradient's sum goes to `gradient`.
double AddGradients(const float* net, std::span<const PackedPosition> positions, std::span<const std::uint32_t> order,
                    const TrainingOptions& options, float* gradient) {
    HiddenLayer layer;
    double loss = 0;
    for (const std::uint32_t index : order) {
        const PackedPosition& position = positions[index];
        const ActiveInputs inputs = InputsOf(position);
        const double share = Sigmoid(Forward(net, inputs, layer));
        const double difference = share - TargetOf(position, options);
        loss += difference * difference;
        Backward(net, inputs, layer, static_cast<float>(2 * difference * share * (1 - share)), gradient);
    }
    return loss;
}

/// The numbers first..last of the net take a step against the sum of the threads' gradients, which is used up.
struct Step {
    TrainingState& State;
    std::vector<std::vector<float>>& Gradients;
    float Rate;
    float Share; // of one position in the batch

    void Take(std::size_t first, std::size_t last) const {
        const auto step = static_cast<double>(State.Step);
        const auto meanScale = static_cast<float>(1 / (1 - std::pow(MeanDecay, step)));
        const auto squareScale = static_cast<float>(1 / (1 - std::pow(SquareDecay, step)));
        for (std::size_t i = first; i < last; ++i) {
            float slope = 0;
            for (std::vector<float>& gradient : Gradients) {
                slope += gradient[i];
                gradient[i] = 0;
            }
            slope *= Share;
            float& mean = State.Mean[i];
            float& square = State.Square[i];
            mean += (slope - mean) * (1 - MeanDecay);
            square += (slope * slope - square) * (1 - SquareDecay);
            const float moved = State.Net[i] - Rate * mean * meanScale / (std::sqrt(square * squareScale) + Smallest);
            const float limit = i < OutputWeightsAt ? LargestInputWeight : LargestOutputWeight;
            State.Net[i] = std::min(std::max(moved, -limit), limit);
        }
    }
};

std::vector<std::uint32_t> ShuffledOrder(std::size_t count, std::uint64_t seed, int epoch) {
    std::vector<std::uint32_t> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::seed_seq sequence{seed, seed >> 32, static_cast<std::uint64_t>(epoch)};
    std::mt19937_64 random(sequence);
    for (std::size_t i = count; i > 1; --i) std::swap(order[i - 1], order[random() % i]);
    return order;
}

std::span<const std::uint32_t> PartOf(std::span<const std::uint32_t> all, int part, int parts) {
    const std::size_t first = all.size() * static_cast<std::size_t>(part) / static_cast<std::size_t>(parts);
    const std::size_t last = all.size() * static_cast<std::size_t>(part + 1) / static_cast<std::size_t>(parts);
    return all.subspan(first, last - first);
}

void InThreads(int threads, const std::function<void(int)>& work) {
    std::vector<std::jthread> running;
    running.reserve(static_cast<std::size_t>(threads));
    for (int thread = 0; thread < threads; ++thread) running.emplace_back(work, thread);
}

std::int16_t RoundTo16(double value) {
    return static_cast<std::int16_t>(std::lround(value));
}

/// What a number of the net is multiplied by in the file.
int UnitAt(std::size_t index) {
    return index < OutputWeightsAt ? Unit : index < OutputBiasAt ? OutputUnit : Unit * OutputUnit;
}

} // namespace

ActiveInputs InputsOf(const PackedPosition& position) {
    ActiveInputs inputs;
    int squares[32];
    int pieces[32]; // kind + 6 for those of the other side
    int turns[2] = {position.Side == 0 ? 0 : 56, position.Side == 0 ? 56 : 0};
    for (std::uint64_t rest = position.Occupied; rest != 0 && inputs.Count < 32; rest &= rest - 1) {
        const int index = inputs.Count++;
        const int square = std::countr_zero(rest);
        const int piece = position.Pieces[index / 2] >> (index % 2 * 4) & 15;
        const int side = (piece >> 3) == position.Side ? 0 : 1;
        squares[index] = square;
        pieces[index] = (piece & 7) + 6 * side;
        if ((piece & 7) == engine::King && (square & 7) > 3) turns[side] ^= 7;
    }
    for (int i = 0; i < inputs.Count; ++i) {
        const int seenByOther = pieces[i] < 6 ? pieces[i] + 6 : pieces[i] - 6;
        inputs.Own[i] = static_cast<std::uint16_t>(pieces[i] * 64 + (squares[i] ^ turns[0]));
        inputs.Other[i] = static_cast<std::uint16_t>(seenByOther * 64 + (squares[i] ^ turns[1]));
    }
    return inputs;
}

WholeNet Round(const SmoothNet& smooth, int scaleCp) {
    WholeNet whole(NumberCount);
    for (std::size_t i = 0; i < ScaleAt; ++i) whole[i] = RoundTo16(static_cast<double>(smooth[i]) * UnitAt(i));
    whole[ScaleAt] = static_cast<std::int16_t>(scaleCp);
    return whole;
}

SmoothNet Unround(const WholeNet& whole) {
    SmoothNet smooth(ScaleAt);
    for (std::size_t i = 0; i < ScaleAt; ++i) smooth[i] = static_cast<float>(whole[i]) / static_cast<float>(UnitAt(i));
    return smooth;
}

double SmoothOutput(const SmoothNet& net, const PackedPosition& position) {
    HiddenLayer layer;
    return Forward(net.data(), InputsOf(position), layer);
}

int WholeValueCp(const WholeNet& net, const PackedPosition& position) {
    const ActiveInputs inputs = InputsOf(position);
    const std::uint16_t* const active[2] = {inputs.Own, inputs.Other};
    const auto set = static_cast<std::size_t>(OutputSet(inputs.Count));
    std::int64_t output = 0;
    for (std::size_t view = 0; view < 2; ++view) {
        for (std::size_t i = 0; i < std::size_t{Hidden}; ++i) {
            std::int64_t sum = net[HiddenBiasAt + i];
            for (int input = 0; input < inputs.Count; ++input)
                sum += net[InputWeightsAt + std::size_t{active[view][input]} * Hidden + i];
            const std::int64_t clipped = std::clamp<std::int64_t>(sum, 0, Unit);
            output += clipped * clipped * net[OutputWeightsAt + (set * 2 + view) * Hidden + i];
        }
    }
    output = output / Unit + net[OutputBiasAt + set];
    return static_cast<int>(output * net[ScaleAt] / (Unit * OutputUnit));
}

TrainingState TrainingState::BeginWith(SmoothNet net) {
    TrainingState state;
    state.Net = std::move(net);
    state.Mean.assign(ScaleAt, 0.0F);
    state.Square.assign(ScaleAt, 0.0F);
    return state;
}

TrainingState TrainingState::Begin(std::uint64_t seed) {
    std::seed_seq sequence{seed, seed >> 32};
    std::mt19937_64 random(sequence);
    // The spread of a sum of 32 inputs, or of all hidden values, is then about one.
    const auto draw = [&](double spread) {
        return static_cast<float>((static_cast<double>(random() >> 11) * 0x1p-53 * 2 - 1) * spread);
    };
    SmoothNet net(ScaleAt, 0.0F);
    for (std::size_t i = 0; i < HiddenBiasAt; ++i) net[i] = draw(std::sqrt(1.0 / 32));
    for (std::size_t i = OutputWeightsAt; i < OutputBiasAt; ++i) net[i] = draw(std::sqrt(1.0 / (2 * Hidden)));
    return BeginWith(std::move(net));
}

void TrainEpoch(TrainingState& state, std::span<const PackedPosition> positions, const TrainingOptions& options,
                TrainingProgress progress) {
    const std::vector<std::uint32_t> order = ShuffledOrder(positions.size(), options.Seed, state.Epoch);
    const auto batchSize = static_cast<std::size_t>(options.BatchSize);
    const std::uint64_t batches = (order.size() + batchSize - 1) / batchSize;
    const double allBatches = static_cast<double>(batches) * options.Epochs;
    std::vector<std::vector<float>> gradients(static_cast<std::size_t>(options.Threads),
                                              std::vector<float>(ScaleAt, 0.0F));
    std::vector<double> losses(static_cast<std::size_t>(options.Threads), 0.0);
    std::size_t reported = 0;
    std::barrier barrier(options.Threads);

    InThreads(options.Threads, [&](int thread) {
        for (std::uint64_t batch = 0; batch < batches; ++batch) {
            const std::size_t first = batch * batchSize;
            const std::size_t size = std::min(batchSize, order.size() - first);
            const std::span<const std::uint32_t> all(order.data() + first, size);
            losses[static_cast<std::size_t>(thread)] +=
                AddGradients(state.Net.data(), positions, PartOf(all, thread, options.Threads), options,
                             gradients[static_cast<std::size_t>(thread)].data());
            barrier.arrive_and_wait();
            if (thread == 0) ++state.Step;
            barrier.arrive_and_wait();
            const double done = static_cast<double>(state.Step - 1) / allBatches;
            const double rate =
                options.Rate *
                (RateFloor + (1 - RateFloor) * (1 + std::cos(3.14159265358979 * std::min(done, 1.0))) / 2);
            const Step step{state, gradients, static_cast<float>(rate), 1.0F / static_cast<float>(size)};
            const auto part = static_cast<std::size_t>(thread);
            const auto parts = static_cast<std::size_t>(options.Threads);
            step.Take(ScaleAt * part / parts, ScaleAt * (part + 1) / parts);
            barrier.arrive_and_wait();
            if (thread == 0 && ((batch + 1) % BatchesBetweenReports == 0 || batch + 1 == batches)) {
                const double sum = std::accumulate(losses.begin(), losses.end(), 0.0);
                std::fill(losses.begin(), losses.end(), 0.0);
                progress(state.Epoch + 1, static_cast<double>(batch + 1) / static_cast<double>(batches),
                         sum / static_cast<double>(first + size - reported));
                reported = first + size;
            }
            barrier.arrive_and_wait();
        }
    });
    ++state.Epoch;
}

double Loss(const SmoothNet& net, std::span<const PackedPosition> positions, const TrainingOptions& options) {
    std::vector<double> sums(static_cast<std::size_t>(options.Threads), 0.0);
    InThreads(options.Threads, [&](int thread) {
        const auto part = static_cast<std::size_t>(thread);
        const auto parts = static_cast<std::size_t>(options.Threads);
        for (std::size_t i = positions.size() * part / parts; i < positions.size() * (part + 1) / parts; ++i) {
            const double difference = Sigmoid(SmoothOutput(net, positions[i])) - TargetOf(positions[i], options);
            sums[part] += difference * difference;
        }
    });
    return std::accumulate(sums.begin(), sums.end(), 0.0) /
           static_cast<double>(std::max<std::size_t>(positions.size(), 1));
}

double FitScale(std::span<const PackedPosition> positions) {
    const auto loss = [&](double scaleCp) {
        double sum = 0;
        for (const PackedPosition& position : positions) {
            const double difference = Sigmoid(position.ValueCp / scaleCp) - position.Result / 2.0;
            sum += difference * difference;
        }
        return sum;
    };
    double low = 50;
    double high = 1000;
    while (high - low > 1) {
        const double a = low + (high - low) / 3;
        const double b = high - (high - low) / 3;
        (loss(a) < loss(b) ? high : low) = loss(a) < loss(b) ? b : a;
    }
    return (low + high) / 2;
}

} // namespace quarnel::tuning
