#pragma once

#include <atomic>
#include <memory>

#include "FftPlan.h"
#include "FftPlanKey.h"

namespace fftbridge {

/// The plan in use for one key, shared by all caches that want that key. All but `generation` is guarded by
/// `fftwApi::fftwAccessMutex_`.
struct FftPlanSlot {
    FftPlanKey key;
    std::shared_ptr<const FftPlan> plan;
    bool measured{};                     ///< the plan is as good as measuring makes it
    int failedAttempts{};                ///< measurements that came to nothing
    std::atomic<unsigned> generation{};  ///< rises with each plan put in place, so that caches notice without a lock
};

}  // namespace fftbridge
