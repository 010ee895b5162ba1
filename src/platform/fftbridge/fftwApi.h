#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "FftPlanKey.h"
#include "FftbridgeExport.h"

namespace fftbridge {

class PlanMeasurement;
struct FftPlanSlot;

/// What the process has of FFTW: aligned memory, the planner's lock, and the plans in use with their improvement.
class FFTBRIDGE_EXPORT fftwApi {
public:
    /// Alignment in bytes of what `malloc` returns: a cache line and the widest vector there is.
    static constexpr std::size_t alignment = 64;

    /// FFTW's planner is one for the process and not made for threads: whatever plans, drops a plan or touches wisdom
    /// holds this. Transforms don't. Recursive, since an owner may hold it while it destroys its plan cache.
    static std::recursive_mutex fftwAccessMutex_;

    static fftwApi& getInstance();

    /// `size` bytes at a multiple of `alignment`, not initialised; also for a size of 0. Throws std::bad_alloc.
    static void* malloc(std::size_t size);
    /// Gives back what `malloc` returned; nothing happens for null.
    static void free(void* pointer) noexcept;

    /// One step of replacing the quick plans in use by measured ones; never waits, so that a program calls it over and
    /// over, a few times a second, when settings rest. A step starts a child process that measures one plan, the
    /// shortest first, or looks whether that has ended; then what it found out is taken over and the next transform
    /// of that length runs on the better plan. A step that forks or takes over costs one to three milliseconds, more
    /// for a process of gigabytes. A plan whose measurement failed twice stays as it is. Returns whether there is more
    /// to do, that is, whether another call is of use. The child is a fork: it closes all files, stands back behind
    /// other work, and ends after a minute at the latest.
    bool improvePlans();

    /// The number of plans in use that have not been measured.
    std::size_t numQuickPlans() const;

    fftwApi(const fftwApi&) = delete;
    fftwApi& operator=(const fftwApi&) = delete;

private:
    friend class FftPlanCache;

    fftwApi();
    ~fftwApi();

    std::shared_ptr<FftPlanSlot> acquireSlot(const FftPlanKey& key, bool measureFirst);
    std::shared_ptr<FftPlanSlot> nextToMeasure() const;
    bool startMeasurement();
    void finishMeasurement(bool succeeded);

    std::map<FftPlanKey, std::weak_ptr<FftPlanSlot>> slots_;
    std::unique_ptr<PlanMeasurement> measurement_;
    std::shared_ptr<FftPlanSlot> measuredSlot_;
};

}  // namespace fftbridge
