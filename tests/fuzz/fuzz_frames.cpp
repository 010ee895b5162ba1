// Frames of any size and content in any order of calls.

#include "LimitedAllocation.h"
#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    using Call = fuzz::RandomClient::Call;
    fuzz::RandomClient::play(data, size,
                             {Call::Frame, Call::Frame, Call::FrameAsIs, Call::Replay, Call::Update, Call::Resize,
                              Call::Rollback, Call::Reset, Call::Tune, Call::Client});
    return 0;
}
