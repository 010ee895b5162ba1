#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace program {

void StandardStreams::claim() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // The lowest that is free is the one that is missing; the wrong direction makes its use fail as before.
            [[maybe_unused]] const int opened = open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

bool StandardStreams::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) {
        return true;
    }
    if (errno == EPIPE) {
        return false;
    }
    throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
}

void StandardStreams::complain(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    std::fprintf(stderr, "wavedeck: %s\n", text.c_str());
}

}  // namespace program
