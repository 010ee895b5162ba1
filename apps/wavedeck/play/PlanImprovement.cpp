#include "PlanImprovement.h"

#include "fftwApi.h"

namespace program {

void PlanImprovement::step() {
    constexpr auto period = std::chrono::milliseconds(250);
    if (!live_ || Clock::now() < next_) {
        return;
    }
    next_ = Clock::now() + period;
    fftbridge::fftwApi::getInstance().improvePlans();
}

}  // namespace program
