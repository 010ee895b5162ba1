#include "StaticFiles.h"

#include <algorithm>
#include <map>
#include <system_error>

namespace program {

namespace fs = std::filesystem;

StaticFiles::StaticFiles(const std::string& folder) {
    std::error_code none;
    folder_ = fs::canonical(folder, none);
}

std::optional<fs::path> StaticFiles::find(const std::string& path) const {
    if (folder_.empty() || path.empty() || path.front() != '/' || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::error_code wrong;
    const fs::path file = fs::canonical(folder_ / (path == "/" ? "index.html" : path.substr(1)), wrong);
    if (wrong || !fs::is_regular_file(file, wrong)) {
        return std::nullopt;
    }
    // Compared after links and ".." are resolved.
    const auto [inFolder, inFile] = std::mismatch(folder_.begin(), folder_.end(), file.begin(), file.end());
    return inFolder == folder_.end() ? std::optional(file) : std::nullopt;
}

std::string StaticFiles::mediaType(const fs::path& file) {
    static const std::map<std::string, std::string> types = {
        {".html", "text/html; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".mjs", "text/javascript; charset=utf-8"},
        {".json", "application/json"},
        {".svg", "image/svg+xml"},
        {".png", "image/png"},
    };
    const auto type = types.find(file.extension().string());
    return type == types.end() ? "application/octet-stream" : type->second;
}

}  // namespace program
