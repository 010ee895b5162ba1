#pragma once

#include <string>
#include <vector>

#include "bf_observer/ClientSettings.h"
#include "streamplug/PropertyList.h"
#include "wavedeck/Visibility.h"

namespace wavedeck {

using streamplug::interfaces::device::PropertyList;

/// Base of every processing stage. A stage is configured by tuneImpl alone and handed one signal of one frame at a
/// time by filterImpl, the last signal of a frame last. The order of the virtual operations is the host's.
class WAVEDECK_API WaveDeckTransformImpl {
public:
    WaveDeckTransformImpl() = default;
    WaveDeckTransformImpl(const WaveDeckTransformImpl&) = delete;
    WaveDeckTransformImpl& operator=(const WaveDeckTransformImpl&) = delete;
    virtual ~WaveDeckTransformImpl();

    // Slots of the host's own; nothing here needs them, so they are empty and not called.
    virtual void transformImpl(const std::vector<double>&, const std::vector<double>&, std::vector<double>&);
    virtual void transformImplC(const std::vector<char>&, const std::vector<double>&, std::vector<char>&);

    /// Called on every stage before each frame.
    virtual void preProcessImpl();

    virtual unsigned long getDestBufSizeImpl(unsigned long, const std::vector<double>&,
                                             const bf_observer::ClientSettings&, bool) const;
    virtual void initializeRWValues(std::vector<char>&, std::vector<double>&, std::vector<char>&);
    virtual void executeAdaptorImpl(const bf_observer::ClientSettings&);

    /// One signal of one frame. `data` holds inputLength doubles; what a stage that is not read-only writes to `out`
    /// replaces the data for the stages behind it.
    virtual void filterImpl(const double* data, std::vector<double>& out, int signal);

    /// Configures the stage: the list holds an option "action" and the action's own options.
    virtual void tuneImpl(const PropertyList& list);

    /// Tells the stage that the simulation stepped back: the list holds an option "action".
    virtual void rollbackImpl(const PropertyList& list);

    virtual void initImpl(const PropertyList& list);

    /// False: the host does not call filterImpl, and strategies do not package the stage's results.
    virtual bool isActive();

    /// True: the stage only looks at the data, its `out` is ignored.
    virtual bool isReadOnly();

    virtual bool hostFlagA();
    virtual void hostHook();

    /// True: the number of channels of the output differs from that of the input.
    virtual bool changesDimensions();

    virtual unsigned long getFilteredDataSize(int signal);
    virtual void setName(const std::string& name);

    /// True: the channels of the output have another length than those of the input.
    virtual bool changesChannelSize();

    virtual bool hostFlagB();

    /// Called at a restart.
    virtual void resetImpl();

    const std::string& getClientID() const { return clientID; }

    /// Written by the host before each filterImpl: number of doubles in the buffer handed over.
    void setInputLength(unsigned long length) { inputLength = length; }

protected:
    std::string clientID;           ///< client that this stage belongs to; assigned by the stage at setup
    unsigned long inputLength = 0;  ///< doubles in the buffer that filterImpl is given
};

}  // namespace wavedeck
