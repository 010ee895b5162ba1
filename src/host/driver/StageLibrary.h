#pragma once

#include <memory>
#include <string>

#include "numbench/nbArray.h"
#include "wavedeck/Visibility.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck::driver {

/// A library of stages, loaded by name. Its code stays loaded until the process ends, since values that its stages put
/// on settings boards outlive the stages and this object.
class WAVEDECK_API StageLibrary {
public:
    /// Loads the library `name`, a path or a name that the dynamic loader finds. Throws DriverError with the loader's
    /// own words.
    explicit StageLibrary(const std::string& name);

    /// A new stage from the factory of that name, which ends in "_filter". Throws DriverError if there is none.
    std::shared_ptr<WaveDeckTransformImpl> makeFilter(const std::string& factory) const;

    /// A new strategy from the factory of that name, which ends in "_strategy". Throws DriverError if there is none.
    std::shared_ptr<WaveDeckDataProcStrategy> makeStrategy(const std::string& factory) const;

    /// The query function of that name, which ends in "Impl". Throws DriverError if there is none.
    NbFunction query(const std::string& name) const;

    /// True when the library itself, and not one that it depends on, defines the name.
    bool offers(const std::string& name) const;

    const std::string& name() const { return name_; }

    /// What the library says of itself in "<library>_version" and "<library>_build_date"; empty if it says nothing.
    std::string version() const;
    std::string buildDate() const;

private:
    void* symbol(const std::string& name) const;
    void* require(const std::string& name, const std::string& ending, const std::string& kind) const;
    std::string text(const std::string& suffix) const;

    std::string name_;
    std::string stem_;  ///< file name without directory and extension: the prefix of the data items
    void* handle_ = nullptr;
    const void* dynamicSection_ = nullptr;  ///< tells the library from those that it depends on
};

}  // namespace wavedeck::driver
