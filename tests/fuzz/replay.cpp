// Hands every file of a folder to the fuzzer's function: what a fuzzer has found once stays mended. With a number
// behind the folder each file is handed over that many times more, and each time another allocation fails.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <vector>

#include "LimitedAllocation.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    const long failures = argc > 2 ? std::atol(argv[2]) : 0;
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        std::fprintf(stderr, "%s\n", entry.path().c_str());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        bool failed = true;
        for (long i = 0, count = 1; i < failures && failed; ++i, count += 1 + count / 4) {
            testsupport::failAllocationAfter(count);
            try {
                LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            } catch (const std::bad_alloc&) {  // one of the fuzzer's own
            }
            failed = testsupport::hasAllocationFailed();
            testsupport::failAllocationAfter(0);
        }
        ++files;
    }
    std::printf("%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
