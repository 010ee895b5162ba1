#pragma once

#include <dlfcn.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "numbench/nbArray.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace testsupport {

/// The measurement library, loaded by name as the host does it: symbols local, never closed, since values on boards
/// outlive the stages. The path is given by the test's build.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const char* path) : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
        if (handle == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }

    std::shared_ptr<wavedeck::WaveDeckTransformImpl> makeFilter(const std::string& name) const {
        using Factory = wavedeck::WaveDeckTransformImpl* (*)();
        return std::shared_ptr<wavedeck::WaveDeckTransformImpl>(find<Factory>(name)());
    }
    std::shared_ptr<wavedeck::WaveDeckDataProcStrategy> makeStrategy(const std::string& name) const {
        using Factory = wavedeck::WaveDeckDataProcStrategy* (*)();
        return std::shared_ptr<wavedeck::WaveDeckDataProcStrategy>(find<Factory>(name)());
    }
    /// The first result of a query about a client; the caller frees it.
    nbArray* query(const std::string& name, const std::string& client) const {
        nbArray* result = nullptr;
        const std::unique_ptr<nbArray, decltype(&nbDestroyArray)> argument(nbCreateString(client.c_str()),
                                                                           nbDestroyArray);
        const nbArray* arguments[] = {argument.get()};
        find<NbFunction>(name)(1, &result, 1, arguments);
        return result;
    }

    template <class Symbol>
    Symbol find(const std::string& name) const {
        void* const symbol = dlsym(handle, name.c_str());
        if (symbol == nullptr) {
            throw std::runtime_error("no symbol " + name);
        }
        return reinterpret_cast<Symbol>(symbol);
    }

private:
    void* handle;
};

}  // namespace testsupport
