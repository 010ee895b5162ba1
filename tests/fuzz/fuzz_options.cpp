// Option lists of any names, kinds and values, at all stages, while data flows.

#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Client = fuzz::RandomClient;
    Client::play(data, size,
                 {&Client::tune, &Client::tune, &Client::tune, &Client::sendAsIs, &Client::frame, &Client::frame,
                  &Client::update, &Client::setup});
    return 0;
}
