#pragma once

#include "Board.h"
#include "PackageText.h"
#include "QueryAnswer.h"
#include "SpectrumEstimatorFilter.h"
#include "Test.h"
#include "TestClient.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace testsupport {

/// A client whose board holds what a spectrum estimator leaves there.
class SpectrumClient : public TestClient {
public:
    explicit SpectrumClient(unsigned long spectrumLength, std::vector<int> channels = {1}, double rbw = 1.0)
        : TestClient(std::move(channels)) {
        board().addCustomSetting(dspwavedecks::SpectrumEstimatorFilter::spectrumLength, spectrumLength);
        board().addCustomSetting(dspwavedecks::SpectrumEstimatorFilter::rbw, rbw);
        board().addCustomSetting(dspwavedecks::SpectrumEstimatorFilter::spectrumEstimatorMetaData,
                                 dspwavedecks::spectrumEstimatorMetaDataStruct());
    }

    dspwavedecks::spectrumEstimatorMetaDataStruct& estimator() const {
        using Record = dspwavedecks::spectrumEstimatorMetaDataStruct;
        return *dspwavedecks::board::find<Record>(board(),
                                                  dspwavedecks::SpectrumEstimatorFilter::spectrumEstimatorMetaData);
    }
    void setSpectrumLength(unsigned long length) const {
        dspwavedecks::board::write(board(), dspwavedecks::SpectrumEstimatorFilter::spectrumLength, length);
    }
    template <class Record>
    Record& record(const std::string& key) const {
        return *dspwavedecks::board::find<Record>(board(), key);
    }
};

inline std::string text(const Poco::JSON::Object::Ptr& package, const char* key) {
    return package->getValue<std::string>(key);
}

}  // namespace testsupport
