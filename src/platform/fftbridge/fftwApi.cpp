#include "fftwApi.h"

#include <fftw3.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "FftPlan.h"
#include "FftPlanSlot.h"
#include "PlanMeasurement.h"

namespace fftbridge {

namespace {

constexpr int maximumAttempts = 2;

bool wantsMeasurement(const FftPlanSlot& slot) {
    return !slot.measured && slot.failedAttempts < maximumAttempts;
}

/// Puts the measured plan in place if wisdom has it; whether it does.
bool improveFromWisdom(FftPlanSlot& slot) {
    std::shared_ptr<const FftPlan> better = FftPlan::createFromWisdom(slot.key);
    if (better == nullptr) {
        return false;
    }
    slot.plan = std::move(better);
    slot.measured = true;
    slot.generation.fetch_add(1, std::memory_order_release);
    return true;
}

}  // namespace

std::recursive_mutex fftwApi::fftwAccessMutex_;

fftwApi::fftwApi() = default;
fftwApi::~fftwApi() = default;

fftwApi& fftwApi::getInstance() {
    static fftwApi instance;
    return instance;
}

void* fftwApi::malloc(std::size_t size) {
    return ::operator new (size, std::align_val_t{alignment});
}

void fftwApi::free(void* pointer) noexcept {
    ::operator delete (pointer, std::align_val_t{alignment});
}

bool fftwApi::improvePlans() {
    const std::unique_lock lock(fftwAccessMutex_, std::try_to_lock);
    if (!lock.owns_lock()) {
        return true;
    }
    if (measurement_ != nullptr) {
        const PlanMeasurement::State state = measurement_->poll();
        if (state == PlanMeasurement::State::running) {
            return true;
        }
        finishMeasurement(state == PlanMeasurement::State::finished);
    }
    return startMeasurement();
}

std::size_t fftwApi::numQuickPlans() const {
    const std::lock_guard lock(fftwAccessMutex_);
    return static_cast<std::size_t>(std::count_if(slots_.begin(), slots_.end(), [](const auto& item) {
        const std::shared_ptr<FftPlanSlot> slot = item.second.lock();
        return slot != nullptr && !slot->measured;
    }));
}

std::shared_ptr<FftPlanSlot> fftwApi::acquireSlot(const FftPlanKey& key, bool measureFirst) {
    std::erase_if(slots_, [](const auto& item) { return item.second.expired(); });
    std::weak_ptr<FftPlanSlot>& shared = slots_[key];
    std::shared_ptr<FftPlanSlot> slot = shared.lock();
    if (slot == nullptr) {
        slot = std::make_shared<FftPlanSlot>();
        slot->key = key;
    }
    if (!slot->measured && measureFirst) {
        FftPlan::measure(key);
    }
    if (!slot->measured && !improveFromWisdom(*slot) && slot->plan == nullptr) {
        slot->plan = FftPlan::createQuick(key);
    }
    if (slot->plan == nullptr) {
        throw std::runtime_error("There is no plan for transforms of " + std::to_string(key.length) + " points");
    }
    shared = slot;
    return slot;
}

std::shared_ptr<FftPlanSlot> fftwApi::nextToMeasure() const {
    for (const auto& [key, shared] : slots_) {
        std::shared_ptr<FftPlanSlot> slot = shared.lock();
        if (slot != nullptr && wantsMeasurement(*slot)) {
            return slot;
        }
    }
    return nullptr;
}

bool fftwApi::startMeasurement() {
    measuredSlot_ = nextToMeasure();
    if (measuredSlot_ == nullptr) {
        return false;
    }
    measurement_ = std::make_unique<PlanMeasurement>(measuredSlot_->key);
    return true;
}

void fftwApi::finishMeasurement(bool succeeded) {
    const bool improved = succeeded && fftw_import_wisdom_from_string(measurement_->wisdom().c_str()) != 0 &&
                          improveFromWisdom(*measuredSlot_);
    measuredSlot_->failedAttempts += improved ? 0 : 1;
    measurement_.reset();
    measuredSlot_.reset();
}

}  // namespace fftbridge
