#include "FftPlanCache.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "FftPlanSlot.h"
#include "fftwApi.h"

namespace fftbridge {

FftPlanCache::FftPlanCache() = default;
FftPlanCache::~FftPlanCache() = default;
FftPlanCache::FftPlanCache(const FftPlanCache&) = default;
FftPlanCache::FftPlanCache(FftPlanCache&&) noexcept = default;
FftPlanCache& FftPlanCache::operator=(const FftPlanCache&) = default;
FftPlanCache& FftPlanCache::operator=(FftPlanCache&&) noexcept = default;

const FftPlan& FftPlanCache::find(const FftContext& context, const FftPlanKey& key, bool measureFirst) {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.key == key; });
    if (found != entries_.end()) {
        std::rotate(entries_.begin(), found, found + 1);
        Entry& entry = entries_.front();
        if (entry.slot->generation.load(std::memory_order_acquire) != entry.generation) {
            refresh(entry);
        }
        return *entry.plan;
    }
    const std::lock_guard lock(fftwApi::fftwAccessMutex_);
    std::shared_ptr<FftPlanSlot> slot = fftwApi::getInstance().acquireSlot(key, measureFirst);
    Entry entry{key, slot, slot->plan, slot->generation.load(std::memory_order_relaxed)};
    entries_.insert(entries_.begin(), std::move(entry));
    entries_.resize(std::min(entries_.size(), std::max<std::size_t>(context.maximumCachedPlans, 1)));
    return *entries_.front().plan;
}

void FftPlanCache::refresh(Entry& entry) {
    // The plan at hand is right, only slower: it stays for one more call rather than wait for a planner at work.
    const std::unique_lock lock(fftwApi::fftwAccessMutex_, std::try_to_lock);
    if (lock.owns_lock()) {
        entry.generation = entry.slot->generation.load(std::memory_order_relaxed);
        entry.plan = entry.slot->plan;
    }
}

}  // namespace fftbridge
