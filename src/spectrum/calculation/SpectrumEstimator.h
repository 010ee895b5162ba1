#pragma once

#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "SpectrumBuffer.h"
#include "SpectrumEstimatorDerived.h"
#include "SpectrumEstimatorEnum.h"
#include "SpectrumEstimatorOptions.h"
#include "SpectrumEstimatorState.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace dspwavedecks {

/// Estimates power spectra and spectrograms of streamed signals: overlapping windowed segments (Welch), with a zoomed
/// band by decimation first, or a polyphase filter bank; exponential averaging, maximum and minimum hold, display
/// units.
///
/// Use: setters, then `setup`, then `computeSpectrum` (time input) or `processSpectrum` (spectra as input) once a
/// signal and frame, the last signal last. A setter that changes something marks what is to begin anew; its owner then
/// calls `release`, and `setup` before the next frame; where stores do not fit any more, nothing is computed before
/// that. No setter checks its value: what does not make sense gives infinite or NaN figures, never an access outside a
/// buffer.
///
/// Letters below: Fs sample rate, d zoom decimation (1 without), Fs' = Fs / d, L segment length and O the overlap, both
/// in samples at Fs', N transform length, S points of a channel's spectrum, C channels of a signal. A complex signal
/// has two raw channels, its real and its imaginary part, which count as one.
///
/// An output has rows of S values: the frequency grid in Hz, then a row a channel. With a spectrogram the grid and each
/// channel have room for all segments of the update, or for its lines if several segments make one; the grid fills the
/// first S values.
///
/// Setters that the tables of options reach while data flows hold a mutex against `setup`; computing does not.
class SpectrumEstimator : private SpectrumEstimatorOptions,
                          private SpectrumEstimatorDerived,
                          private SpectrumEstimatorState {
public:
    using InputDomain = SpectrumEstimatorEnum::InputDomain;
    using SpectrumType = SpectrumEstimatorEnum::SpectrumType;
    using Method = SpectrumEstimatorEnum::Method;
    using FrequencyRange = SpectrumEstimatorEnum::FrequencyRange;
    using FrequencyResolutionMethod = SpectrumEstimatorEnum::FrequencyResolutionMethod;
    using FrequencySpan = SpectrumEstimatorEnum::FrequencySpan;
    using Window = SpectrumEstimatorEnum::Window;
    using SpectrumUnits = SpectrumEstimatorEnum::SpectrumUnits;
    using AveragingMethod = SpectrumEstimatorEnum::AveragingMethod;

    SpectrumEstimator() = default;
    SpectrumEstimator(const SpectrumEstimator&) = delete;
    SpectrumEstimator& operator=(const SpectrumEstimator&) = delete;

    // ---- Options. An equal value changes nothing. ----

    void setInputDomain(const InputDomain& value);
    void setSpectrumType(const SpectrumType& value);
    void setShowSpectrum(const bool& value);
    void setShowSpectrogram(const bool& value);
    void setSampleRate(const double& value);
    void setFrequencyOffset(const std::vector<double>& value);
    void setMethod(const Method& value);
    void setFrequencyRange(const FrequencyRange& value);
    void setDefaultSegmentLength(const std::size_t& value);
    void setMinimumSegmentLength(const std::size_t& value);
    void setMaximumSegmentLength(const std::size_t& value);
    void setFrequencyResolutionMethod(const FrequencyResolutionMethod& value);
    void setAutoRBW(const bool& value);
    void setWindowInvariantSamplesPerUpdate(const bool& value);
    /// Without effect while the RBW is automatic. The RBW figures follow at once, the segments at the next `setup`.
    void setRBW(const double& value);
    void setAutoFFTLength(const bool& value);
    void setFFTLength(const std::size_t& value);
    void setAutoFrequencyVector(const bool& value);
    /// Without effect while the grid is automatic.
    void setFrequencyVector(const std::vector<double>& value);
    void setNumTapsPerBand(const std::size_t& value);
    /// Without effect unless the resolution is given by the window's length.
    void setWindowLength(const std::size_t& value);
    void setFrequencySpan(const FrequencySpan& value);
    void setSpan(const double& value);
    void setCenterFrequency(const double& value);
    void setStartFrequency(const double& value);
    void setStopFrequency(const double& value);
    void setOverlapPercent(const double& value);
    void setWindow(const Window& value);
    /// Without effect unless the window is custom.
    void setCustomWindow(const std::vector<double>& value);
    void setSidelobeAttenuation(const double& value);
    void setAveragingMethod(const AveragingMethod& value);
    void setForgettingFactor(const double& value);
    void setAutoVBW(const bool& value);
    void setVBW(const double& value);
    void setSpectralAverages(const std::size_t& value);
    void setSpectrumUnits(const SpectrumUnits& value);
    void setInputUnits(const SpectrumUnits& value);
    void setReferenceLoad(const double& value);
    void setAutoFullScale(const bool& value);
    void setFullScale(const double& value);
    void setPlotMaxHoldTrace(const bool& value);
    void setPlotMinHoldTrace(const bool& value);
    void setSpectrogramChannel(const std::size_t& value);
    void setAutoTimeSpan(const bool& value);
    void setTimeSpan(const double& value);
    void setAutoTimeResolution(const bool& value);
    void setTimeResolution(const double& value);
    /// One type name a signal, "double", "single" or "half" for floating point; a signal without one counts as such.
    void setInputDataType(const std::vector<std::string>& value);
    /// One full-scale value a signal; 1 for a signal without one.
    void setInputRange(const std::vector<double>& value);

    /// The sizes of the frames to come, one a signal. They take effect at once and mark nothing.
    void setFrameSize(const std::vector<int>& value);
    void setUnbufferedFrameSize(const std::vector<int>& value);

    /// A new sample rate that goes with a new frame size: unlike `setSampleRate` it keeps the samples held.
    void setSampleRateForFrameSizeChange(const double& value);

    // ---- Plain stores: no comparison, nothing is marked. ----

    void setAllowTransientAveraging(const bool& value) { allowTransientAveraging = value; }
    void setUseWelchForFilterBankTransient(const bool& value) { useWelchForFilterBankTransient = value; }
    void setUseHalideForFIRPolyphaseAnalysis(const bool& value) { useHalideForFIRPolyphaseAnalysis = value; }
    void setOutputFrequencyVector(const std::size_t& value) { outputFrequencyVector = value; }
    void setEnableMaxSegmentLengthThreshold(const bool& value) { enableMaxSegmentLengthThreshold = value; }
    /// Off: every frame gives a spectrum, from a growing segment until the first one is whole.
    void setEnableDesiredSegmentLengthThreshold(const bool& value) { enableDesiredSegmentLengthThreshold = value; }
    void setUseNaNsInCalculatingAverages(const bool& value) { useNaNsInCalculatingAverages = value; }
    void setFullScaleOverflow(const bool& value) { fullScaleOverflow = value; }
    void setIsProcessingNewData(const bool& value) { isProcessingNewData = value; }
    void setUseCachedSpectrumData(const bool& value) { useCachedSpectrumData = value; }
    void setPropertyChanged(const bool& value) { propertyChanged = value; }
    void setResetAveragingStates(const bool& value) { resetAveragingStates = value; }
    void setResetFilterbankStates(const bool& value) { resetFilterbankStates = value; }
    void setResetMaxMinHoldStates(const bool& value) { resetMaxMinHoldStates = value; }
    void setFlushSpectrumBuffer(const bool& value) { flushSpectrumBuffer = value; }
    void setResetSignalBuffers(const bool& value) { resetSignalBuffers = value; }

    // ---- Life cycle. ----

    /// Works out all derived quantities and makes the stores; then the estimator is locked. Vectors have an entry a
    /// signal; numChannels are raw counts, isComplex 0 or 1. isProcessingNewData is false while recorded frames are
    /// played again: then, unless a setter changed something, the rows of the last update are given out as they are.
    void setup(const int& numSignals, const std::vector<int>& frameSize, const std::vector<int>& unbufferedFrameSize,
               const std::vector<int>& numChannels, const std::vector<int>& isComplex, const bool& isProcessingNewData);

    /// Unlocks, so that the next frame sets up anew. A full reset, or a setter that asked for it, also begins the
    /// counters and the fill of the segments anew; a full reset restarts averages, hold traces and the buffer as well.
    void release(const bool& fullReset);

    /// One frame of one signal of time data.
    /// data    [raw channels * frame size] the channels one after the other, of a complex signal the real parts of all
    ///         channels before the imaginary parts; no leading block
    /// out     resized and filled when the frame completes an update, else left as it is
    /// returns the record, whose isNewDataReady stays set from an update to the beginning of the next one
    /// No allocation in steady state. Once S and the number of segments rest, O(segments * C * N log N).
    const spectrumEstimatorMetaDataStruct& computeSpectrum(const double* data, std::vector<double>& out,
                                                           const int& signal);

    /// One frame of one signal of spectra: units are converted, hold traces kept. Every frame is an update.
    const spectrumEstimatorMetaDataStruct& processSpectrum(const double* data, std::vector<double>& out,
                                                           const int& signal);

    const spectrumEstimatorMetaDataStruct& getSpectrumMetaData() const { return metaData; }
    /// Rises when anything in the record may have changed: a frame without an update leaves both as they are.
    std::uint64_t getRecordVersion() const { return recordVersion; }
    /// Rises when the hold traces of all signals begin anew, which the update of one signal may do.
    std::uint64_t getNumHoldResets() const { return numHoldResets; }
    /// For the publisher of the record, which hands the flag resetCachedNumSamplesProcessed on once.
    void clearResetCachedNumSamplesProcessed() { metaData.resetCachedNumSamplesProcessed = false; }

    /// Zeroes both transform buffers if locked on time input.
    void resetFFTResources();
    /// Zeroes averages and their weights if `force`, or if they are marked and the estimator is not locked.
    void resetAveragingResources(const bool& force);
    /// Fills the hold traces that are on with -infinity (maximum) and +infinity (minimum), if they are marked.
    void resetMaxAndMinHoldResources();

    // ---- What the settings amount to. ----

    double getSampleRate() const { return sampleRate; }
    double getDeltaFrequency() const { return deltaFrequency; }
    /// Hz, of the last update.
    double getRBW() const { return transientRBW; }
    std::size_t getTotalNumChannels() const { return totalNumChannels; }
    /// Channels of a signal; those of a complex signal are half its raw count.
    std::size_t getNumChannels(const int& signal) const;
    int getFrameSize(const int& signal) const;
    int getUnbufferedFrameSize(const int& signal) const;
    std::string getInputDataType(const int& signal) const;
    const std::vector<double>& getWindowData() const { return windowData; }
    const std::vector<double>& getFilterbankPolyphaseMatrix() const { return filterbankPolyphaseMatrix; }
    /// L of the last update.
    std::size_t getSegmentLength() const { return transientSegmentLength; }
    std::size_t getNumOverlapSamples() const { return numOverlapSamples; }
    double getENBW() const { return enbw; }
    double getWindowPower() const { return windowPower; }

    bool getUseCachedSpectrumData() const { return useCachedSpectrumData; }
    bool getResetAveragingStates() const { return resetAveragingStates; }
    bool needToResetSignalBuffers() const { return resetSignalBuffers; }
    bool isPropertyChanged() const { return propertyChanged; }
    bool isLocked() const { return isLocked_; }
    bool isFrequencyInputDomain() const { return inputDomain == InputDomain::frequency; }
    bool isFilterbankMode() const { return method == Method::filterBank; }
    bool isTwoSidedSpectrum() const { return frequencyRange == FrequencyRange::centered; }
    bool isFrequencySpanFull() const { return frequencySpan == FrequencySpan::full; }
    bool isFrequencySpanSpanAndCenterFrequency() const {
        return frequencySpan == FrequencySpan::spanAndCenterFrequency;
    }
    bool isFrequencySpanStartAndStopFrequencies() const {
        return frequencySpan == FrequencySpan::startAndStopFrequencies;
    }
    bool isFrequencyResolutionMethodRBW() const { return frequencyResolutionMethod == FrequencyResolutionMethod::rbw; }
    bool isFrequencyResolutionMethodWindowLength() const {
        return frequencyResolutionMethod == FrequencyResolutionMethod::windowLength;
    }
    bool isFrequencyResolutionMethodNumFrequencyBands() const {
        return frequencyResolutionMethod == FrequencyResolutionMethod::numFrequencyBands;
    }
    bool isRectangularWindow() const { return window == Window::rectangular; }
    bool isExponentialAveraging() const { return averagingMethod == AveragingMethod::exponential; }
    bool isVBWAveraging() const { return averagingMethod == AveragingMethod::vbw; }
    bool isRunningAveraging() const { return averagingMethod == AveragingMethod::running; }
    bool isAutoFullScale() const { return autoFullScale; }
    bool isAnyInputComplex() const;
    bool isZoomFFTEnabled() const;
    bool isFrequencyVectorTrimmed() const;
    bool isDesiredSegmentLengthMet(const bool& flag) const;

    /// True once a changed property has been worked in and the feature is on.
    bool isShowSpectrogramPropertyChangeProcessed() const { return !propertyChanged && showSpectrogram; }
    bool isFilterBankPropertyChangeProcessed() const { return !propertyChanged && isFilterbankMode(); }
    bool isPlotAsTwoSidedSpectrumPropertyChangedProcessed() const { return !propertyChanged && isTwoSidedSpectrum(); }
    bool isPlotMaxMinHoldPropertyChangedProcessed() const { return !propertyChanged && isAnyHoldTraceOn(); }

    /// Index of a channel in stores that hold the channels of all signals.
    std::size_t getChannelBufferIdx(const int& signal, const std::size_t& channel) const;
    std::size_t getFrequencyVectorSize() const;
    /// Values that an output of `n` channels has.
    std::size_t getOutputDataSize(const std::size_t& n) const;
    /// Position in the output of a channel's row for a segment.
    std::size_t getOutputDataIdx(const std::size_t& channel, const std::size_t& segment) const;
    std::size_t getNumSpectrumBlocks() const;
    std::size_t getNumSpectrogramLines() const;
    double getSpan() const;
    double getCenterFrequency() const;
    double getStartFrequency() const;
    double getStopFrequency() const;
    double getTimeResolution() const;
    /// The shortest time resolution that the RBW allows, s.
    double getMinTimeResolution() const { return 1.0 / transientRBW; }

    /// Whether the settings make sense at a sample rate: at least two resolution bandwidths in the span.
    bool isValidSampleRate(const double& rate) const;
    /// L that these settings give, without a `setup`; they are taken over as by their setters.
    std::size_t getTargetSegmentLength(const bool& autoRBW, const double& rbw, const double& sampleRate);
    /// Asks for `n` samples a segment, as a resolution of its own would.
    void setSegmentLength(const std::size_t& n);

    // ---- Windows. ----

    /// Periodic windows of n points over theta = 2 pi k / n; w is resized to n. For n = 1, w[0] = 1.
    ///   hann             0.5 - 0.5 cos theta
    ///   hamming          0.54 - 0.46 cos theta
    ///   blackmanharris   0.35875 - 0.48829 cos theta + 0.14128 cos 2 theta - 0.01168 cos 3 theta
    ///   flattop          0.21557895 - 0.41663158 cos theta + 0.277263158 cos 2 theta - 0.083578947 cos 3 theta
    ///                    + 0.006947368 cos 4 theta
    static void hann(std::vector<double>& w, const std::size_t& n);
    static void hamming(std::vector<double>& w, const std::size_t& n);
    static void blackmanharris(std::vector<double>& w, const std::size_t& n);
    static void flattop(std::vector<double>& w, const std::size_t& n);
    /// Symmetric Dolph-Chebyshev window with equal side lobes `attenuation` dB down, the largest value 1, by a direct
    /// series. n = 2 keeps what w holds, new elements being 1. An attenuation below 0 dB gives NaN.
    static void chebyshev(std::vector<double>& w, const std::size_t& n, const double& attenuation);
    /// Symmetric Kaiser window  I0(beta sqrt(1 - (2 r / (n - 1))^2)) / I0(beta),  r from the centre, with
    ///   beta = 0.1102 (a - 8.7) for a > 50 dB; 0.5842 (a - 21)^0.4 + 0.07886 (a - 21) from 21 dB on; 0 below.
    /// Throws std::overflow_error for an attenuation whose Bessel function has no double (about 6450 dB).
    static void kaiser(std::vector<double>& w, const std::size_t& n, const double& attenuation);

    /// Makes the window in use for n samples: all ones for the filter bank; a custom one keeps its own length.
    void computeWindowData(const std::size_t& n);
    /// Makes that window and works out its equivalent noise bandwidth in bins,  n sum(w^2) / (sum w)^2,  1 for a
    /// rectangular one.
    void computeENBW(const std::size_t& n);
    /// sum(w^2); the number of elements for a rectangular window and for the filter bank.
    void computeWindowPower();

    // ---- Averaging: forgetting factor, video bandwidth and number of averages. ----

    /// t = 2 pi (vbw enbw / rbw);  1 - t / (t + 1)
    double vbw2ForgettingFactor(const double& vbw) const;
    /// (1 - ff) rbw / (2 pi ff enbw); half the sample rate for a factor of 0.
    double forgettingFactor2VBW(const double& ff) const;
    /// 1 - 2 / (n + 1)
    static double spectralAverages2ForgettingFactor(const std::size_t& n);
    double spectralAverages2VBW(const std::size_t& n) const;
    /// ceil(2 / (1 - ff) - 1); 100 for a factor of 1.
    std::size_t forgettingFactor2SpectralAverages(const double& ff) const;
    std::size_t vbw2SpectralAverages(const double& vbw) const;
    bool isAveragingDisallowed() const;

    // ---- Units. ----

    bool isWatts() const;
    bool isdBScale() const;
    bool isdBFS() const;
    double getdBmFactor() const;
    double getFullScale(const int& signal) const;
    /// ohm; 1 for rms spectra and for levels below full scale.
    double getReferenceLoad() const;
    bool isFloatingPointInput(const int& signal) const;
    /// True if spectra that come in already have the unit that goes out, at a load that changes nothing. The sense is
    /// the opposite of the name, and meant: `processSpectrum` reads it so.
    bool isFrequencyInputDomainScalingRequired() const;
    /// Factor from the square of a transform's magnitude to power or density in W or W/Hz.
    double getSpectrumScaleValue() const;

    // ---- Filter bank. ----

    /// Waiting for the bank to fill, 2 group delays; hybrid mode shows Welch spectra meanwhile.
    bool isFilterbankInTransientState() const;
    bool isFilterbankInHybridMode() const;
    bool isFilterbankInSteadyState() const;
    bool isFilterbankInSteadyStateStart() const;

    /// Lowpass for a decimation by `factor` of 2 * halfLength * factor taps: a sinc cut at 1 / (2 factor) of the sample
    /// rate under a Kaiser window. Stored branch by branch: element n at (n mod factor) * 2 halfLength + n / factor.
    /// Throws std::length_error for more taps than a vector holds.
    void designMultirateFIR(std::vector<double>& h, const std::size_t& factor, const std::size_t& halfLength,
                            const double& attenuation) const;

private:
    /// What a setter that changed something marks, besides that it did.
    enum Mark : unsigned {
        changed = 1U,
        averaging = 2U,
        filterbank = 4U,
        holdTraces = 8U,
        signalBuffers = 16U,
        everything = 31U,
    };

    template <class T>
    bool assign(T& field, const T& value, unsigned marks);
    template <class T>
    bool assignLocked(T& field, const T& value, unsigned marks);
    void mark(unsigned marks);

    // Derived quantities, in the order in which setup works them out.
    void computeTotalNumChannels();
    void allocateTimeDomainResources();
    void allocateFrequencyDomainResources();
    void computeSpan();
    void computeDesiredRBW();
    void computeZoomFFTDecimationFactor();
    void computeActualSampleRate();
    void computeDesiredSegmentLength();
    double computeSegmentLengthForRBW();
    double computeENBWForSearch(std::size_t n);
    void computeActualSegmentLength();
    void computeActualRBW();
    void computeFFTLength();
    void computeFrequencyVector();
    void computeDeltaFrequency();
    void computeFrequencyVectorRange();
    void computeSpectrumLength();
    void computeNumOverlapSamples();
    void computeDesiredNumSamplesPerUpdate();
    void computeActualNumSamplesPerUpdate();
    std::size_t oneSidedLength() const;
    std::size_t toCount(double value) const;
    std::size_t frequencyRangeStart() const { return isFrequencyVectorTrimmed() ? frequencyVectorRange[0] : 0; }
    bool isZoomInUse() const { return zoomFFTEnabled && !isFrequencyInputDomain(); }
    bool isComplexSignal(const int& signal) const;
    bool isAnyHoldTraceOn() const { return plotMaxHoldTrace || plotMinHoldTrace; }
    bool isPlainFilterbank() const { return isFilterbankMode() && !isFilterbankInHybridMode(); }
    Layout presentLayout() const;
    /// Whether there is room for a signal: after a setup, and until a setter asks for another layout.
    bool isLaidOutFor(const int& signal) { return signal >= 0 && signal < numSignals && (layoutFits || checkLayout()); }
    bool checkLayout();
    /// Of each channel of a signal.
    std::size_t numSamplesInFrame(const int& signal) const {
        const auto index = static_cast<std::size_t>(signal);
        return static_cast<std::size_t>(index < frameSize.size() ? std::max(frameSize[index], 0) : 0);
    }
    bool endsBeforeSegment(const int& signal, std::size_t samples) const;
    bool isLastSignal(const int& signal) const { return signal + 1 >= numSignals; }

    // The record.
    void updateSpectrumMetaData();
    void updateComputedSpectrumMetaData();
    void updateProcessedSpectrumMetaData();
    void copyFrequencyVector(double* to, std::size_t count) const;

    // Welch.
    void setupBuffer();
    double bufferOverlapPercent() const { return isFilterbankMode() || isZoomInUse() ? 0.0 : overlapPercent; }
    void allocateWelchResources();
    void allocateFFTResources();
    void computeFrame(const double* data, std::vector<double>& out, const int& signal, std::size_t samples);
    void repeatCachedSpectrum(std::vector<double>& out, const int& signal);
    void computeInSlices(const double* data, std::vector<double>& out, const std::size_t& numChannels);
    std::size_t numSegmentsInFrame(std::size_t first, std::size_t samples) const;
    std::size_t sliceLength() const;
    const double* segmentSamples(const std::size_t& bufferIndex, std::size_t segment, std::size_t segments,
                                 std::size_t& available) const;
    void addDataToSpectrumBuffer(const double* data, const int& signal, const std::size_t& numChannels,
                                 const SpectrumBuffer::Slice& slice);
    std::size_t getNumSegments(const std::size_t& bufferIndex) const;
    std::size_t computeTransientSegmentLength(const std::size_t& bufferIndex, bool ready) const;
    double computeTransientRBW(const std::size_t& length) const;
    void computeTransientNumSamplesPerUpdate();
    void beginTransientUpdate(bool ready);
    void computeUpdate(std::vector<double>& out, const int& signal, const std::size_t& numChannels);
    void prepareOutput(std::vector<double>& out, const std::size_t& numChannels) const;
    void computeSegments(std::vector<double>& out, const int& signal, const std::size_t& numChannels);
    void finishOutput(std::vector<double>& out, const int& signal, const std::size_t& numChannels);
    void countSegment(const int& signal);
    void finishFrame(bool ready, std::size_t newSegments);
    void addFrequencyVectorToOutputBuffer(std::vector<double>& out) const;
    void prepareSegment(const int& signal, const std::size_t& numChannels, const std::size_t& segment);
    void computeSegmentPart(std::vector<double>& out, const SegmentPart& part);
    void addDataToFFTBuffer(const SegmentPart& part);
    void addWindowedDataToFFTBuffer(const SegmentPart& part);
    void computePSD(std::vector<double>& out, const SegmentPart& part);
    void computeTwoSidedPSD(std::vector<double>& out, const SegmentPart& part);
    void computeOneSidedPSD(std::vector<double>& out, const SegmentPart& part);
    bool isDCOrNyquist(std::size_t k, const bool& isEvenLength) const;
    void cacheSpectrum(const std::vector<double>& out, const int& signal, const std::size_t& numChannels);

    // Zoom.
    void allocateZoomFFTResources();
    void rotateZoomFilter();
    void beginZoomChannel(const std::size_t& bufferIndex);
    void takeZoomLeadIn(const std::size_t& bufferIndex);
    bool isZoomLeadInPending(const std::size_t& bufferIndex) const;
    std::size_t getNumZoomPointsBefore(const std::size_t& bufferIndex) const;
    std::size_t zoomHistoryLength() const { return zoomFilter.empty() ? 0 : zoomFilter.size() - 1; }
    void decimate(const std::size_t& bufferIndex, std::size_t offset, std::size_t samples,
                  std::complex<double>* points);
    void keepZoomHistory(const std::size_t& bufferIndex, std::size_t offset, std::size_t samples);
    void computeZoomSegment(const int& signal, const std::size_t& numChannels, const std::size_t& segment);
    void addZoomFFTWindowedDataToFFTBuffer(const SegmentPart& part);

    // Averaging and hold traces.
    void allocateAveragingResources();
    void allocateMaxAndMinHoldResources();
    void computeActualForgettingFactor();
    void computeActualVBW();
    void computeActualSpectralAverages();
    void computeExponentialAverage(std::vector<double>& out, const SegmentPart& part);
    double nextAverageWeight(const int& signal);
    bool canAverageInPlace() const;
    void computeAveragedPSD(const SegmentPart& part);
    void copyAverageToRows(std::vector<double>& out, const int& signal, const std::size_t& numChannels) const;
    void computeMaxAndMinHoldTracePSD(const std::vector<double>& out, const SegmentPart& part);
    void computeMaxAndMinHoldTraceSpectrum(const std::vector<double>& out, const int& signal,
                                           const std::size_t& numChannels);

    // Spectrogram.
    void allocateSpectrogramResources();
    void computeActualTimeResolution();
    void computeNumSegmentsPerBlock();
    void computeTimeIncrement();
    void computeActualTimeSpan();
    void aggregateSpectrum(std::vector<double>& out, const int& signal, const std::size_t& numChannels);

    // Scaling.
    bool isSameUnitInAndOut() const;
    void scaleSpectrum(std::vector<double>& out, const int& signal, const std::size_t& numChannels);
    void scaleMaxMinHoldTraceSpectrum(const int& signal, const std::size_t& numChannels);
    void scaleFrequencyDomainSpectrum(std::vector<double>& out);

    // Filter bank.
    void allocateFilterbankResources();
    void computeFilterbankLowpassCoefficients();
    void computeFIRFilterGroupDelay();
    void allocateFIRPolyphaseAnalysisResources();
    void allocateKernelStores(bool complexSamples);
    bool isFilterbankComplex() const { return isAnyInputComplex() || isZoomInUse(); }
    void computeFIRPolyphaseAnalysis(const int& signal, const std::size_t& numChannels, const std::size_t& segment);
    void computeKernelAnalysis(const int& signal, const std::size_t& numChannels, const std::size_t& segment);
    const double* filterbankSamples(const std::size_t& bufferIndex, std::size_t segment, std::size_t segments,
                                    std::size_t& available) const;
    template <class Sample>
    void analyse(FilterbankStores<Sample>& bank, const Sample* samples, std::size_t count,
                 std::size_t bufferIndex) const;
    void addFIRPolyphaseAnalysisDataToFFTBuffer(const int& signal, const std::size_t& numChannels);
    /// Place of a channel in the transform's input: the bank fills it for all channels, windows for those at hand.
    std::size_t inputPlace(const SegmentPart& part, std::size_t channel) const {
        return isFilterbankMode() ? channel : channel - part.first;
    }
    /// Place of a segment in the transform's input.
    std::size_t inputSegment(std::size_t segment) const { return segment % transform.segments(); }
};

}  // namespace dspwavedecks
