#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "ClientFacts.h"
#include "QueryValue.h"
#include "wavedeck/DataStorageFilterUtils.h"
#include "wavedeck/Visibility.h"
#include "wavedeck/WaveDeckClientInfo.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck::driver {

struct ActionContext;
class Chain;
class Display;
class SampleStream;
struct Stage;
enum class FrameSource;

/// One update for the display.
struct Update {
    std::string event;                            ///< under which it goes out
    Poco::SharedPtr<Poco::JSON::Object> message;  ///< null when nothing new came; MessageText turns it into text
};

/// A client: its facts, its chain of stages and its strategy, driven frame by frame.
///
///     DeckClient client(facts);
///     client.addStage("signal_statistics_filter", library.makeFilter("signal_statistics_filter"), options);
///     client.setStrategy(name, library.makeStrategy(name));  // "dsp_wavedeck_frame_data_strategy"
///     client.setup();
///     while (...) {
///         client.frame(samples);
///         if (client.updateDue()) send(client.update());
///     }
///
/// Every operation takes the client's lock, so that frames, updates, actions and queries run one after another from
/// whatever thread they come. What a stage throws passes through to the caller; the client stays usable.
class WAVEDECK_API DeckClient {
public:
    /// Registers the client. Throws DriverError if the facts cannot be (name too long or taken, no signal, a negative
    /// count, an odd count of a complex signal, input ports not last). A client that could not be made leaves nothing
    /// registered.
    explicit DeckClient(ClientFacts facts);
    DeckClient(const DeckClient&) = delete;
    DeckClient& operator=(const DeckClient&) = delete;
    /// Destroys the stages, then forgets the client. Who holds the client's record keeps its board alive.
    ~DeckClient();

    // The chain.

    /// Appends a stage with the options that setup() sends it. Throws DriverError if the chain has the name already.
    void addStage(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> stage, PropertyList options = {});
    void setStrategy(const std::string& name, std::shared_ptr<WaveDeckDataProcStrategy> strategy);
    std::vector<std::string> stageNames() const;
    std::shared_ptr<WaveDeckTransformImpl> stage(const std::string& name) const;

    // Actions. An option given takes the place of one that the driver sends under that name. An unknown stage is a
    // DriverError.

    /// Sets all stages up with their options and begins the stream anew.
    void setup();
    /// Sets one stage up with other options, which setup() sends it from then on; the stream goes on.
    void setup(const std::string& stage, const PropertyList& options);
    /// Sends new options to one stage, while data flows.
    void tune(const std::string& stage, const PropertyList& options);
    /// Sends all stages other counts of raw channels and other frame sizes, one a signal.
    void resize(const std::vector<int>& numChannels, const std::vector<int>& frameSizes);
    /// Sends all stages other frame sizes. In a simulation the frame period stays, so that sample times change.
    void resizeFrames(const std::vector<int>& frameSizes);
    /// Tells all stages of a step back. With a number as option "rollbacktime" (seconds) the stream goes on behind that
    /// time, and what the display holds of later times is dropped.
    void rollback(const PropertyList& options);
    void rollback(const std::string& stage, const PropertyList& options);
    /// Calls resetImpl of all stages, or of one.
    void reset();
    void reset(const std::string& stage);
    /// Begins the stream anew: all stages are reset, and what was stored or displayed is dropped. Sets no stage up.
    void restart();
    /// Hands a stage's tuneImpl a list exactly as it stands.
    void sendAsIs(const std::string& stage, const PropertyList& list);
    /// Changes the display span, seconds, on the axes and at the stages that follow it.
    void setDisplaySpan(double seconds);

    // Frames. One span a signal: [numChannels * n] raw channel after raw channel. n may be below the frame size and
    // differ between signals; an empty span hands the stages a buffer of no points. Times are start + index * sample
    // time. Every stage must have been set up: else DriverError.

    void frame(std::span<const std::span<const double>> signals);
    void frame(const std::vector<std::vector<double>>& signals);
    /// Hands every stage the buffers as they stand; behind a stage that replaces data its output.
    void frameAsIs(const std::vector<std::vector<double>>& buffers);
    /// A frame of a simulation in head form: the times of the F simulation frames in hand, then [numChannels][F *
    /// frameSize] values. Only for the Blockflow kinds, which take no other.
    void simulationFrame(const std::vector<std::vector<double>>& heads);

    // Replay from the stored history.

    /// Makes the repository the client's source, or ends that. New data ends it too.
    void setReplaying(bool replaying);
    bool isReplaying() const;
    /// Hands the stages the stored raw history as one replayed frame. Returns whether replay goes on: a stage may end
    /// it.
    bool replay();
    /// Hands the stages a given frame as replayed data; nothing of it is stored.
    bool replay(const std::vector<std::vector<double>>& signals);
    bool replayAsIs(const std::vector<std::vector<double>>& buffers);

    // Updates.

    /// True when the next update is due by stream time. Its pace is that of ClientFacts.
    bool updateDue() const;
    /// Builds a message if anything new came since the last update, and else only names the event for that.
    Update update();
    /// Builds a message whether or not anything new came.
    Update updateNow();
    /// Furthest time that the stream has reached, seconds.
    double streamTime() const;

    // Results and facts.

    /// Calls a query function for this client; returns all that it gave.
    std::vector<QueryValue> query(NbFunction function);
    /// Keeps what replacing stages put out after a frame, for output(); off at first, since it costs a copy a frame.
    void setKeepOutputs(bool keep);
    /// What a replacing stage put out for a signal in the last frame; empty if nothing.
    std::vector<double> output(const std::string& stage, std::size_t signal) const;
    /// Stands for the host's storage filter: puts its record on the board and lets strategies find it active.
    void setStorage(const DataStorageFilterUtils& storage);
    /// Reads or changes the client's facts and board under the client's lock.
    void withInfo(const std::function<void(WaveDeckClientInfo&)>& change);
    const std::string& name() const { return facts_.name; }
    ClientFacts facts() const;
    /// Seconds of signal that picture and cached measurements cover.
    double displaySpan() const;

private:
    using Signals = std::span<const std::span<const double>>;
    using Action = std::function<void(WaveDeckTransformImpl&)>;

    void makeParts();
    void publishFacts();
    void publishSampleTimes();
    void publishAxes();
    ActionContext context() const;
    std::size_t lineLength();
    void refreshForms();
    void setUp(Stage& stage);
    void act(Stage& stage, const PropertyList& list, const Action& action);
    void finishAction(const Stage& stage);
    void send(Stage& stage, const PropertyList& list);
    void beginStream();
    void resetStages();
    void changeSizes(const std::vector<int>& numChannels, const std::vector<int>& frameSizes);

    void requireReady(std::size_t numSignals) const;
    void requireBoardEntries() const;
    Signals spansOf(const std::vector<std::vector<double>>& signals);
    void endReplayFor(FrameSource source);
    void takeFrame(Signals signals, FrameSource source);
    void takeBuffers(const std::vector<std::vector<double>>& buffers, FrameSource source);
    bool runChain(FrameSource source);
    std::uint64_t periodsReached() const;
    Update makeUpdate(bool always);

    mutable std::mutex mutex_;

    // options
    ClientFacts facts_;
    const std::vector<SignalFacts> signalsAtFirst_;  ///< before any size change
    bool keepsOutputs_ = false;

    // derived
    double displaySpan_ = 0.0;
    std::vector<int> outputChannels_;  ///< of each signal, behind the stages that change the count

    // state
    std::shared_ptr<WaveDeckClientInfo> info_;
    std::unique_ptr<SampleStream> stream_;
    std::unique_ptr<Chain> chain_;
    std::unique_ptr<Display> display_;
    std::string strategyName_;
    std::shared_ptr<WaveDeckDataProcStrategy> strategy_;
    std::uint64_t updatePeriods_ = 0;  ///< whole update periods up to the last update
    bool showsSpectrogram_ = false;    ///< as the stages were last told
    bool isNew_ = false;               ///< the strategy's data changed since the last update

    // scratch
    std::vector<std::span<const double>> spans_;
    std::vector<double> kept_;
    std::vector<std::string> ids_;
};

}  // namespace wavedeck::driver
