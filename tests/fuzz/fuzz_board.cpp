// Settings boards with entries of any kind, and the query functions that read them.

#include "LimitedAllocation.h"
#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const testsupport::AllocationLimit limit;
    using Call = fuzz::RandomClient::Call;
    fuzz::RandomClient::play(data, size,
                             {Call::Board, Call::Board, Call::Query, Call::Query, Call::Frame, Call::Frame,
                              Call::Update, Call::Replay, Call::Tune});
    return 0;
}
