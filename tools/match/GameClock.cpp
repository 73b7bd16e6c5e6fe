#include "GameClock.h"

#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <utility>

namespace quarnel::match {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr int MostSeconds = 100000;

/// Milliseconds of "5", "0.05".
std::optional<std::int64_t> ReadSeconds(std::string_view text) {
    const std::size_t point = text.find('.');
    const std::optional<int> seconds = engine::ReadNumber(text.substr(0, point), 0, MostSeconds);
    std::string decimals(point == std::string_view::npos ? "0" : text.substr(point + 1));
    if (decimals.empty() || decimals.size() > 3) return std::nullopt;
    decimals.resize(3, '0');
    const std::optional<int> thousandths = engine::ReadNumber(decimals, 0, 999);
    if (!seconds || !thousandths) return std::nullopt;
    return std::int64_t{*seconds} * 1000 + *thousandths;
}

std::string WriteSeconds(std::int64_t durationMs) {
    std::string text = std::to_string(durationMs / 1000);
    if (durationMs % 1000 == 0) return text;
    text += "." + std::to_string(1000 + durationMs % 1000).substr(1);
    return text.substr(0, text.find_last_not_of('0') + 1);
}

} // namespace

std::optional<ClockRules> ReadClockRules(std::string_view text) {
    const std::size_t plus = text.find('+');
    const auto base = ReadSeconds(text.substr(0, plus));
    const auto increment = ReadSeconds(plus == std::string_view::npos ? "0" : text.substr(plus + 1));
    if (!base || *base == 0 || !increment) return std::nullopt;
    return ClockRules{*base, *increment};
}

std::string WriteClockRules(const ClockRules& rules) {
    return WriteSeconds(rules.BaseMs) + "+" + WriteSeconds(rules.IncrementMs);
}

GameClock::GameClock(const std::optional<ClockRules>& white, const std::optional<ClockRules>& black, int marginMs,
                     Source now)
    : margin_(marginMs), now_(std::move(now)) {
    if (white) sides_[engine::White] = {true, milliseconds(white->BaseMs), white->IncrementMs};
    if (black) sides_[engine::Black] = {true, milliseconds(black->BaseMs), black->IncrementMs};
}

ClockTimes GameClock::Times() const {
    ClockTimes times;
    for (const engine::Color color : {engine::White, engine::Black}) {
        const Side& side = sides_[color];
        if (!side.HasClock) continue;
        // Some engines take no time at all for no clock.
        times.LeftMs[color] = std::max<std::int64_t>(std::chrono::floor<milliseconds>(side.Left).count(), 1);
        times.IncrementMs[color] = side.IncrementMs;
    }
    return times;
}

void GameClock::Start(engine::Color mover) {
    mover_ = mover;
    if (sides_[mover].HasClock) started_ = now_();
}

std::optional<std::string> GameClock::Stop() {
    Side& side = sides_[mover_];
    if (!side.HasClock) return std::nullopt;
    const nanoseconds used = now_() - started_;
    if (used > side.Left + margin_)
        return "thought for " + WriteSeconds(std::chrono::ceil<milliseconds>(used).count()) + " s with " +
               WriteSeconds(std::chrono::floor<milliseconds>(side.Left).count()) + " s left";
    side.Left = std::max(side.Left - used, nanoseconds(0)) + milliseconds(side.IncrementMs);
    return std::nullopt;
}

} // namespace quarnel::match
