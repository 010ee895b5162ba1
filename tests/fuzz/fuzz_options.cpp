// Option lists of any names, kinds and values, at all stages, while data flows.

#include "LimitedAllocation.h"
#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    using Call = fuzz::RandomClient::Call;
    fuzz::RandomClient::play(
        data, size,
        {Call::Tune, Call::Tune, Call::Tune, Call::SendAsIs, Call::Frame, Call::Frame, Call::Update, Call::Setup});
    return 0;
}
