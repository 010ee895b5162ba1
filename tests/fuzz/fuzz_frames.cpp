// Frames of any size and content in any order of calls.

#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Client = fuzz::RandomClient;
    Client::play(data, size,
                 {&Client::frame, &Client::frame, &Client::frameAsIs, &Client::replay, &Client::update, &Client::resize,
                  &Client::rollback, &Client::reset, &Client::tune, &Client::changeClient});
    return 0;
}
