#include "FigureDefinitions.h"

#include <algorithm>
#include <iterator>

namespace program {
namespace {

struct Definition {
    std::string_view section;
    std::string_view figure;
    std::string_view text;
};

constexpr Definition definitions[] = {
    {"input", "rate", "sample times per second"},
    {"input", "channels", "channels of the signal; a complex channel counts once"},
    {"input", "samples", "sample times played, of each channel"},
    {"input", "duration", "samples / rate"},
    {"input", "centerFrequency", "frequency at which the middle of the band lay, added to all frequencies shown"},
    {"input", "recorded", "when the first sample that was played was taken, UTC"},
    {"input", "minimum", "smallest finite value of all channels, real and imaginary parts alike"},
    {"input", "maximum", "largest finite value of all channels, real and imaginary parts alike"},
    {"input", "rms", "sqrt(mean |x|^2) over the finite values of all channels, the mean not removed"},
    {"input", "notFinite", "values that are NaN or infinite"},

    {"deck", "frames", "frames handed to the deck"},
    {"deck", "samples", "values handed to the deck: sample times by channels"},
    {"deck", "updates", "messages sent"},
    {"deck", "held", "times that the pacer held the simulation until more of it was shown"},
    {"deck", "span", "of the time and frame decks: stretch of time that is shown and measured; of spectra: to - from"},
    {"deck", "updatesProcessed", "spectra computed"},
    {"deck", "start", "frequency of the first bin"},
    {"deck", "stop", "frequency of the last bin"},
    {"deck", "referenceLoad", "R in P = V^2 / R, by which volts become watts"},
    {"deck", "requestedRBW", "resolution bandwidth as set, or what was set in its place"},
    {"deck", "rbw", "resolution bandwidth: sample rate * ENBW / segment length, of the last spectrum"},
    {"deck", "enbw", "equivalent noise bandwidth of the window: N sum(w^2) / (sum w)^2"},
    {"deck", "segmentLength", "samples of one windowed segment"},
    {"deck", "fftLength", "points of the transform of a segment"},
    {"deck", "averages",
     "spectra whose plain mean scatters as the average in use does: 2 / (1 - forgetting factor) - 1, rounded up (100 "
     "for "
     "a factor of 1)"},
    {"deck", "vbw", "video bandwidth: that of a filter along time which averages as much"},
    {"deck", "wholeSegments", "whether segments have the length that the resolution bandwidth asks for"},
    {"deck", "noiseFloors.signal", "input, counted from 0"},
    {"deck", "noiseFloors.channel", "channel of the signal, counted from 0"},

    {"stats", "maximum", "largest sample"},
    {"stats", "maximumPosition", "place of the last of equal largest samples"},
    {"stats", "minimum", "smallest sample"},
    {"stats", "minimumPosition", "place of the first of equal smallest samples"},
    {"stats", "peakToPeak", "maximum - minimum"},
    {"stats", "mean", "sum(x) / N"},
    {"stats", "variance", "sum((x - mean)^2) / (N - 1)"},
    {"stats", "standardDeviation", "sqrt(variance), divisor N - 1"},
    {"stats", "median", "middle sample, or the mean of the two middle ones"},
    {"stats", "rms", "sqrt(sum(x^2) / N), the mean not removed"},
    {"stats", "meanSquare", "sum(x^2) / N"},

    {"peaks", "count", "peaks reported: the strongest local maxima, at most as many as were asked for"},
    {"peaks", "peaks.frequency", "frequency of the bin of a local maximum, not interpolated"},
    {"peaks", "peaks.level", "level of that bin, in the spectrum's unit"},
    {"peaks", "peaks.time", "time of the sample of a local maximum"},
    {"peaks", "peaks.sample", "index in the frame of a local maximum"},
    {"peaks", "peaks.value", "value at the local maximum; of a filter response in dB or as displayed"},

    {"bilevel", "highStateLevel", "fullest of 100 bins of the range's upper half, its middle, unless set"},
    {"bilevel", "lowStateLevel", "fullest of 100 bins of the range's lower half, its middle, unless set"},
    {"bilevel", "amplitude", "high state - low state"},
    {"bilevel", "posEdges", "transitions from the low to the high state"},
    {"bilevel", "riseTime", "mean time from the lower to the upper reference level of rising transitions"},
    {"bilevel", "posSlewRate", "mean of the distance of the reference levels over each rise time"},
    {"bilevel", "negEdges", "transitions from the high to the low state"},
    {"bilevel", "fallTime", "mean time from the upper to the lower reference level of falling transitions"},
    {"bilevel", "negSlewRate", "mean of the distance of the reference levels over each fall time, negative"},
    {"bilevel", "posPreshoot", "mean excursion below the low state before a rise, of the amplitude"},
    {"bilevel", "posOvershoot", "mean excursion above the high state behind a rise, of the amplitude"},
    {"bilevel", "posUndershoot", "mean excursion below the high state behind a rise, of the amplitude"},
    {"bilevel", "posSettlingTime", "mean time from a rise's mid crossing until it stays in the state's tolerance"},
    {"bilevel", "negPreshoot", "mean excursion above the high state before a fall, of the amplitude"},
    {"bilevel", "negOvershoot", "mean excursion above the low state behind a fall, of the amplitude"},
    {"bilevel", "negUndershoot", "mean excursion below the low state behind a fall, of the amplitude"},
    {"bilevel", "negSettlingTime", "mean time from a fall's mid crossing until it stays in the state's tolerance"},
    {"bilevel", "period", "mean time between crossings of the mid level in the same direction"},
    {"bilevel", "frequency", "1 / period"},
    {"bilevel", "posPulses", "pulses from a rising to the next falling crossing of the mid level"},
    {"bilevel", "posWidth", "mean time from a rising to the next falling crossing of the mid level"},
    {"bilevel", "posDutyCycle", "positive width / period"},
    {"bilevel", "negPulses", "pulses from a falling to the next rising crossing of the mid level"},
    {"bilevel", "negWidth", "mean time from a falling to the next rising crossing of the mid level"},
    {"bilevel", "negDutyCycle", "negative width / period"},

    {"trigger", "updates", "updates that told of the trigger"},
    {"trigger", "triggered", "updates that were aligned to a trigger"},
    {"trigger", "position", "time of the last trigger"},
    {"trigger", "level", "level that the trigger crossed"},

    {"channel", "channelStart", "lower edge of the channel that is measured"},
    {"channel", "channelStop", "upper edge of the channel that is measured"},
    {"channel", "channelPower", "10 log10 of the power density integrated from edge to edge of the channel"},
    {"channel", "occupiedBandwidth",
     "width of the band that holds the set percentage of the channel's power, equal shares left out on both sides "
     "(ITU-R SM.443)"},
    {"channel", "startFrequency", "lower edge of the occupied band"},
    {"channel", "stopFrequency", "upper edge of the occupied band"},
    {"channel", "frequencyError", "middle of the occupied band - middle of the channel"},
    {"channel", "adjacentBandwidth", "width of each adjacent channel"},
    {"channel", "adjacentChannels.offset", "distance of the adjacent channels' middles from that of the channel"},
    {"channel", "adjacentChannels.lower", "power of the band below, at the offset, over that of the channel"},
    {"channel", "adjacentChannels.upper", "power of the band above, at the offset, over that of the channel"},

    {"distortion", "thd",
     "10 log10(sum of the harmonics' powers / power of the fundamental), of frequencies from 0 Hz up"},
    {"distortion", "thdPercent",
     "100 * 10^(THD / 20): ratio of rms amplitudes, harmonics to fundamental (IEC 61000-4-7)"},
    {"distortion", "snr",
     "10 log10(power of the fundamental / noise power), without harmonics, of frequencies from 0 Hz up (IEEE Std "
     "1241)"},
    {"distortion", "sinad",
     "10 log10(power of the fundamental / (noise + harmonics)), of frequencies from 0 Hz up (IEEE Std 1241)"},
    {"distortion", "sfdr",
     "10 log10(power of the fundamental / largest spurious bin or harmonic), of frequencies from 0 Hz up"},
    {"distortion", "toi", "mean of the two intercepts L1 + (L2 - Llower) / 2 and L2 + (L1 - Lupper) / 2"},
    {"distortion", "tones.frequency", "frequency of the tone's bin: fundamental and harmonics, or tones and products"},
    {"distortion", "tones.level", "level of the tone's bin, in the spectrum's unit"},

    {"phaseNoise", "spots.signal", "input, counted from 0"},
    {"phaseNoise", "spots.channel", "channel of the signal, counted from 0"},
    {"phaseNoise", "spots.offset", "distance from the carrier, the strongest bin from 0 Hz up"},
    {"phaseNoise", "spots.level", "power density at the offset over the carrier's power, one sideband (IEEE Std 1139)"},

    {"mask", "passing", "whether no bin of the newest spectrum lies beyond a mask"},
    {"mask", "passed", "spectra in which no bin lay beyond a mask"},
    {"mask", "tests", "spectra compared with the masks"},
    {"mask", "successRate", "100 passed / tests"},
    {"mask", "reference", "level to which the masks are relative"},

    {"response", "points", "frequencies at which the response was computed"},
    {"response", "startFrequency", "lowest of them"},
    {"response", "stopFrequency", "highest of them"},
    {"response", "greatestGain", "largest 20 log10 |H(f)|"},
    {"response", "greatestGainFrequency", "where it is"},
    {"response", "startGain", "20 log10 |H| at the lowest frequency"},
    {"response", "stopGain", "20 log10 |H| at the highest frequency"},
    {"response", "passbandStart", "lowest frequency within 3 dB of the greatest gain"},
    {"response", "passbandStop", "highest frequency within 3 dB of the greatest gain"},
    {"response", "stopbandPeak", "greatest gain beyond the first minima on both sides of the passband"},
    {"response", "stopbandPeakFrequency", "where it is"},
    {"response", "points3dB.frequency", "crossing of greatest gain - 3 dB, linear between points"},
    {"response", "points6dB.frequency", "crossing of greatest gain - 6 dB, linear between points"},
};

}  // namespace

std::string_view findFigureDefinition(std::string_view section, std::string_view figure) {
    const auto* found = std::find_if(std::begin(definitions), std::end(definitions), [&](const Definition& entry) {
        return entry.section == section && entry.figure == figure;
    });
    return found == std::end(definitions) ? std::string_view() : found->text;
}

}  // namespace program
