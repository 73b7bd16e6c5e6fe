#include "engine/CommandQueue.h"

namespace quarnel {

void CommandQueue::SendCommand(TextView line) {
    lines_ += line;
    lines_ += u'\n';
    ++CommandCount;
}

std::optional<Text> CommandQueue::TakeLine() {
    if (lines_.empty()) return std::nullopt;
    const auto end = lines_.find(u'\n');
    Text line = lines_.substr(0, end);
    lines_.erase(0, end + 1);
    --CommandCount;
    return line;
}

} // namespace quarnel
