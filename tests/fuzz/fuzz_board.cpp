// Settings boards with entries of any kind, and the query functions that read them.

#include "RandomClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Client = fuzz::RandomClient;
    Client::play(data, size,
                 {&Client::writeBoard, &Client::writeBoard, &Client::query, &Client::query, &Client::frame,
                  &Client::frame, &Client::update, &Client::replay, &Client::tune});
    return 0;
}
