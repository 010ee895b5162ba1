#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "FftPlanKey.h"
#include "FftbridgeExport.h"

namespace fftbridge {

class FftPlan;
struct FftPlanSlot;

/// How a plan cache is kept.
struct FftContext {
    std::size_t maximumCachedPlans{4};  ///< plans that a cache holds on to; the one used longest ago goes first
};

/// The plans that one owner of transforms uses, by length and count. The plans themselves are shared between all caches
/// of the process. A cache belongs to one thread at a time; different caches need no agreement. Destroy it under
/// `fftwApi::fftwAccessMutex_` or not, as suits the owner: dropping the last use of a plan takes the lock itself.
class FFTBRIDGE_EXPORT FftPlanCache {
public:
    FftPlanCache();
    ~FftPlanCache();
    FftPlanCache(const FftPlanCache&);
    FftPlanCache(FftPlanCache&&) noexcept;
    FftPlanCache& operator=(const FftPlanCache&);
    FftPlanCache& operator=(FftPlanCache&&) noexcept;

    /// The best plan that is ready for `key`; it stays valid until the next call. A plan that is in the cache is found
    /// without a lock; one that is not is made under the planner's lock, measured if `measureFirst`, else quickly.
    /// Throws std::runtime_error if FFTW has no plan for the key.
    const FftPlan& find(const FftContext& context, const FftPlanKey& key, bool measureFirst);

private:
    struct Entry {
        FftPlanKey key;
        std::shared_ptr<FftPlanSlot> slot;
        std::shared_ptr<const FftPlan> plan;
        unsigned generation{};
    };

    static void refresh(Entry& entry);

    std::vector<Entry> entries_;  ///< the one used last in front
};

}  // namespace fftbridge
