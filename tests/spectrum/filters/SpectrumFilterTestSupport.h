#pragma once

#include "SpectrumEstimatorFilter.h"
#include "SpectrumTestSignals.h"
#include "TestClient.h"

namespace testsupport {

/// The record on the client's board.
inline dspwavedecks::spectrumEstimatorMetaDataStruct record(const TestClient& client) {
    const auto* const stored = dspwavedecks::SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(client.name());
    return stored != nullptr ? *stored : dspwavedecks::spectrumEstimatorMetaDataStruct();
}

}  // namespace testsupport
