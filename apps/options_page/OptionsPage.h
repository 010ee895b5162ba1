#pragma once

#include <string>

namespace dspwavedecks::catalogue {

/// The page docs/options.md as the catalogue tells it: every stage with its options, as Markdown.
std::string makeOptionsPage();

}  // namespace dspwavedecks::catalogue
