#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace program {

/// The files of the display page: those below one folder and nothing else.
class StaticFiles {
public:
    explicit StaticFiles(const std::string& folder);

    /// The file that a request's path names ("/" is the page itself), or nothing if there is none or it lies outside.
    std::optional<std::filesystem::path> find(const std::string& path) const;

    /// Media type by the file's ending.
    static std::string mediaType(const std::filesystem::path& file);

private:
    std::filesystem::path folder_;
};

}  // namespace program
