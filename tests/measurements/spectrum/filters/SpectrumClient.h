#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include "Board.h"
#include "QueryStructure.h"
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

/// What a query function hands out for a client.
class QueryAnswer {
public:
    QueryAnswer(void (*answer)(nbArray**, const nbArray**), const TestClient& client) {
        const dspwavedecks::NbArrayPointer name(nbCreateString(client.name().c_str()));
        const nbArray* arguments[] = {name.get()};
        nbArray* results[2] = {};
        answer(results, arguments);
        first.reset(results[0]);
        second.reset(results[1]);
    }

    std::vector<std::string> fields() const {
        std::vector<std::string> names;
        for (int i = 0; i < nbGetNumberOfFields(first.get()); ++i) {
            names.emplace_back(nbGetFieldNameByNumber(first.get(), i));
        }
        return names;
    }
    const nbArray* field(const char* name) const { return nbGetField(first.get(), 0, name); }
    double number(const char* name) const { return nbGetScalar(field(name)); }
    std::vector<double> numbers(const char* name) const {
        const double* const values = nbGetDoubles(field(name));
        return {values, values + nbGetNumberOfElements(field(name))};
    }
    bool isTrue() const { return nbGetScalar(first.get()) != 0.0; }
    bool isSecondTrue() const { return nbGetScalar(second.get()) != 0.0; }

private:
    dspwavedecks::NbArrayPointer first;
    dspwavedecks::NbArrayPointer second;
};

inline std::string text(const Poco::SharedPtr<Poco::JSON::Object>& package, const char* key) {
    return package->getValue<std::string>(key);
}

}  // namespace testsupport
