#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace program {

/// What was found in a recording, each over the stretch of samples in which it was seen without a break.
class AnnotationList {
public:
    /// Something found in one stretch of samples.
    struct Finding {
        std::string label;       ///< findings of different labels are never joined
        double frequency = 0.0;  ///< Hz
        double lower = 0.0;      ///< Hz, edges of what it covers
        double upper = 0.0;
        double level = 0.0;   ///< of several findings that are joined the greatest counts, with its comment
        std::string comment;  ///< for people
    };

    /// Takes what was found in the samples from `begin` to before `end`, which follow on those of the call before. A
    /// finding goes on one of the call before if that has its label and lies no farther off than the finding is wide.
    void add(std::uint64_t begin, std::uint64_t end, const std::vector<Finding>& findings);

    /// Findings that were left out because there are too many.
    std::uint64_t leftOut() const { return leftOut_; }

    /// Puts all annotations among those of a recording's metadata, in the order of their samples.
    /// firstIndex  index of sample 0 in the recording
    void writeTo(nlohmann::ordered_json& metadata, std::uint64_t firstIndex) const;

private:
    struct Event {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        Finding finding;
    };

    std::vector<Event> events_;
    std::vector<std::size_t> open_;  ///< events that reach up to the last call
    std::uint64_t leftOut_ = 0;
    std::vector<std::size_t> stillOpen_;  ///< scratch
};

}  // namespace program
