#include "PerformanceMetrics.h"

#include <cmath>

#include "wavedeck/WaveDeckStatics.h"

namespace dspwavedecks {

void PerformanceMetrics::beginWindow() {
    frameCount = 0;
    startTime = Clock::now();
}

void PerformanceMetrics::log(Poco::SharedPtr<Poco::JSON::Object>& message) {
    if (!wavedeck::WaveDeckStatics::getEnableWaveDecksDiagnostics()) {
        return;
    }
    if (!enabled) {
        enabled = true;
        beginWindow();
    } else if (frameCount == framesPerWindow) {
        stopTime = Clock::now();
        elapsed = static_cast<double>(std::chrono::nanoseconds(stopTime - startTime).count()) / 1e9;
        beginWindow();
    }
    ++frameCount;
    Poco::SharedPtr<Poco::JSON::Object> performance = new Poco::JSON::Object;
    performance->set("framesPerSecond", std::round(static_cast<double>(framesPerWindow) / elapsed));
    message->set("performance", performance);
}

}  // namespace dspwavedecks
