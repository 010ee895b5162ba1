#pragma once

#include <string>

namespace dspwavedecks {

/// The choices that a spectrum estimator offers, and the option words that stand for them. A word that is not known
/// stands for value 0, without an error: options reach the estimator from clients of other versions.
struct SpectrumEstimatorEnum {
    enum class InputDomain : int { time = 0, frequency = 1 };
    enum class SpectrumType : int { power = 0, powerDensity = 1, rms = 2 };
    enum class Method : int { welch = 0, filterBank = 1 };
    /// Only `centered` gives a two-sided spectrum; `twoSided` computes what `oneSided` does, and is meant to.
    enum class FrequencyRange : int { centered = 0, oneSided = 1, twoSided = 2 };
    enum class FrequencyResolutionMethod : int { rbw = 0, windowLength = 1, numFrequencyBands = 2 };
    enum class FrequencySpan : int { full = 0, spanAndCenterFrequency = 1, startAndStopFrequencies = 2 };
    enum class Window : int {
        blackmanHarris = 0,
        chebyshev = 1,
        flatTop = 2,
        hamming = 3,
        hann = 4,
        kaiser = 5,
        rectangular = 6,
        custom = 7
    };
    /// The numbering is fixed, and shared with the spectrum measurements up to `dbfsPerHz`.
    enum class SpectrumUnits : int {
        watts = 0,
        dbw = 1,
        dbm = 2,
        dbfs = 3,
        vrms = 4,
        dbv = 5,
        dbuv = 6,
        wattsPerHz = 7,
        dbwPerHz = 8,
        dbmPerHz = 9,
        dbfsPerHz = 10,
        automatic = 11,
        none = 12
    };
    enum class AveragingMethod : int { exponential = 0, vbw = 1, running = 2 };

    /// "time", "frequency"
    static InputDomain getInputDomainEnum(const std::string& word);
    /// "power", "power-density", "rms"
    static SpectrumType getSpectrumTypeEnum(const std::string& word);
    /// "welch", "filter-bank"
    static Method getMethodEnum(const std::string& word);
    /// "centered", "one-sided", "two-sided"
    static FrequencyRange getFrequencyRangeEnum(const std::string& word);
    /// "rbw", "window-length", "num-frequency-bands"
    static FrequencyResolutionMethod getFrequencyResolutionMethodEnum(const std::string& word);
    /// "full", "span-and-center-frequency", "start-and-stop-frequencies"
    static FrequencySpan getFrequencySpanEnum(const std::string& word);
    /// "blackman-harris", "chebyshev", "flat-top", "hamming", "hann", "kaiser", "rectangular", "custom"
    static Window getWindowEnum(const std::string& word);
    /// "watts", "dbw", "dbm", "dbfs", "vrms", "dbv", "dbuv", "watts/hz", "dbw/hz", "dbm/hz", "dbfs/hz", "auto", "none"
    static SpectrumUnits getSpectrumUnitsEnum(const std::string& word);
    /// "exponential", "vbw", "running"
    static AveragingMethod getAveragingMethodEnum(const std::string& word);
};

}  // namespace dspwavedecks
