#include "StageLibrary.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>

#include "DriverError.h"

namespace wavedeck::driver {

namespace {

bool endsWith(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

StageLibrary::StageLibrary(const std::string& name)
    : name_(name), stem_(std::filesystem::path(name).filename().stem().string()) {
    handle_ = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle_) {
        throw DriverError(std::string("cannot load the stage library: ") + dlerror());
    }
    link_map* map = nullptr;
    if (dlinfo(handle_, RTLD_DI_LINKMAP, &map) == 0 && map) {
        dynamicSection_ = map->l_ld;
    }
}

void* StageLibrary::symbol(const std::string& name) const {
    void* address = dlsym(handle_, name.c_str());
    Dl_info info;
    link_map* map = nullptr;
    // The loader also searches what the library depends on; only the library's own names count.
    if (!address || dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0 || !map ||
        map->l_ld != dynamicSection_) {
        return nullptr;
    }
    return address;
}

bool StageLibrary::offers(const std::string& name) const {
    return symbol(name) != nullptr;
}

void* StageLibrary::require(const std::string& name, const std::string& ending, const std::string& kind) const {
    void* address = endsWith(name, ending) ? symbol(name) : nullptr;
    if (!address) {
        throw DriverError("there is no " + kind + " \"" + name + "\" in " + name_);
    }
    return address;
}

std::shared_ptr<WaveDeckTransformImpl> StageLibrary::makeFilter(const std::string& factory) const {
    using Factory = WaveDeckTransformImpl* (*)();
    const auto make = reinterpret_cast<Factory>(require(factory, "_filter", "stage"));
    return std::shared_ptr<WaveDeckTransformImpl>(make());
}

std::shared_ptr<WaveDeckDataProcStrategy> StageLibrary::makeStrategy(const std::string& factory) const {
    using Factory = WaveDeckDataProcStrategy* (*)();
    const auto make = reinterpret_cast<Factory>(require(factory, "_strategy", "strategy"));
    return std::shared_ptr<WaveDeckDataProcStrategy>(make());
}

NbFunction StageLibrary::query(const std::string& name) const {
    return reinterpret_cast<NbFunction>(require(name, "Impl", "query function"));
}

std::string StageLibrary::text(const std::string& suffix) const {
    const auto* item = static_cast<const char* const*>(symbol(stem_ + suffix));
    return item && *item ? *item : "";
}

std::string StageLibrary::version() const {
    return text("_version");
}
std::string StageLibrary::buildDate() const {
    return text("_build_date");
}

}  // namespace wavedeck::driver
