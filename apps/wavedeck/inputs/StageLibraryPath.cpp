#include "StageLibraryPath.h"

#include <filesystem>
#include <system_error>

namespace program {

std::string stageLibraryPath() {
    const std::string name = "libdspwavedecksimpl.so";
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto beside = program.parent_path().parent_path() / "lib" / name;
    return !error && std::filesystem::exists(beside, error) ? beside.string() : name;
}

}  // namespace program
