#pragma once

#include <memory>
#include <string>
#include <vector>

#include "openInput.h"

namespace program {

/// Whether an INPUT names a SigMF recording: by the extension of its metadata, its dataset, its archive or a
/// collection.
bool isSigmf(const std::string& input);

/// The files of a SigMF recording that is named by INPUT: itself, its metadata and its dataset, whether they are there
/// or not.
std::vector<std::string> sigmfFiles(const std::string& input);

/// Opens a SigMF recording by any of its files. The metadata tell type, rate, channels and what each capture has of
/// its own; their samples lie side by side, or where the metadata or the archive say. Throws UsageError.
std::unique_ptr<SignalReader> openSigmf(const std::string& input, const InputOptions& options, double factor);

/// The text of a recording's metadata: of the file itself, of the one beside a dataset, of the one in an archive.
std::string readSigmfText(const std::string& input);

}  // namespace program
