#include "history/HistoryStore.h"

#include "history/HistoryTime.h"

#include <algorithm>
#include <iterator>

namespace quarn {

namespace {

WallTime earlier(WallTime time, double seconds) {
    return time - std::chrono::duration_cast<WallTime::duration>(std::chrono::duration<double>(seconds));
}

} // namespace

void HistoryStore::append(SharedSample sample, WallTime now) {
    samples_.push_back(std::move(sample));
    const WallTime cutoff = earlier(now, duration);
    const auto current = std::find_if(samples_.begin(), samples_.end(),
                                      [&](const SharedSample& each) { return each->time >= cutoff; });
    const auto old = static_cast<size_t>(current - samples_.begin());
    const size_t drop = std::max(old, samples_.size() - std::min(samples_.size(), limit));
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<ptrdiff_t>(drop));
    thinnedCount_ -= std::min(thinnedCount_, drop);
    thinOld(now);
}

void HistoryStore::thinOld(WallTime now) {
    const WallTime denseCut = earlier(now, denseSpan);
    const auto first = samples_.begin() + static_cast<ptrdiff_t>(thinnedCount_);
    const auto dense =
        std::find_if(first, samples_.end(), [&](const SharedSample& each) { return each->time >= denseCut; });
    if (dense - first < static_cast<ptrdiff_t>(batch)) return;
    const auto kept =
        thinned({first, dense}, first == samples_.begin() ? nullptr : first[-1].get(), sparseStep);
    samples_.erase(std::copy(kept.begin(), kept.end(), first), dense);
    thinnedCount_ += kept.size();
}

std::vector<SharedSample> HistoryStore::thinned(std::span<const SharedSample> samples,
                                                const HistorySample* after, double minStep) {
    constexpr double earlyTick = 0.9;
    std::vector<SharedSample> kept;
    for (const SharedSample& sample : samples) {
        if (after && secondsBetween(after->time, sample->time) < earlyTick * minStep) continue;
        kept.push_back(sample);
        after = sample.get();
    }
    return kept;
}

std::vector<HistoryBreak> HistoryStore::restore(std::vector<SharedSample> restored,
                                                std::vector<HistoryBreak> breaks, WallTime now) {
    const WallTime cutoff = earlier(now, duration);
    const WallTime end = samples_.empty() ? now : samples_.front()->time;
    std::erase_if(restored, [&](const SharedSample& each) {
        return each->time < cutoff || each->time > end || (!samples_.empty() && each->time == end);
    });
    std::erase_if(breaks, [&](const HistoryBreak& each) { return each.second < epochSeconds(cutoff); });
    if (restored.empty()) return breaks;
    breaks.emplace_back(epochSeconds(restored.back()->time), epochSeconds(end));

    const size_t room = limit - std::min(limit, samples_.size());
    const size_t surplus = restored.size() - std::min(restored.size(), room);
    samples_.insert(samples_.begin(), restored.begin() + static_cast<ptrdiff_t>(surplus), restored.end());
    thinnedCount_ = 0; // what was thinned before stays as it is when it is thinned again
    thinOld(now);
    return breaks;
}

} // namespace quarn
