#include "wavedeck/WaveDeckDataProcStrategy.h"

#include <string>
#include <vector>
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck {

WaveDeckTransformImpl::~WaveDeckTransformImpl() = default;
void WaveDeckTransformImpl::transformImpl(const std::vector<double>&, const std::vector<double>&,
                                          std::vector<double>&) {}
void WaveDeckTransformImpl::transformImplC(const std::vector<char>&, const std::vector<double>&, std::vector<char>&) {}
void WaveDeckTransformImpl::preProcessImpl() {}
unsigned long WaveDeckTransformImpl::getDestBufSizeImpl(unsigned long, const std::vector<double>&,
                                                        const bf_observer::ClientSettings&, bool) const {
    return 0;
}
void WaveDeckTransformImpl::initializeRWValues(std::vector<char>&, std::vector<double>&, std::vector<char>&) {}
void WaveDeckTransformImpl::executeAdaptorImpl(const bf_observer::ClientSettings&) {}
void WaveDeckTransformImpl::filterImpl(const double*, std::vector<double>&, int) {}
void WaveDeckTransformImpl::tuneImpl(const PropertyList&) {}
void WaveDeckTransformImpl::rollbackImpl(const PropertyList&) {}
void WaveDeckTransformImpl::initImpl(const PropertyList&) {}
bool WaveDeckTransformImpl::isActive() {
    return true;
}
bool WaveDeckTransformImpl::isReadOnly() {
    return true;
}
bool WaveDeckTransformImpl::hostFlagA() {
    return true;
}
void WaveDeckTransformImpl::hostHook() {}
bool WaveDeckTransformImpl::changesDimensions() {
    return false;
}
unsigned long WaveDeckTransformImpl::getFilteredDataSize(int) {
    return 0;
}
void WaveDeckTransformImpl::setName(const std::string&) {}
bool WaveDeckTransformImpl::changesChannelSize() {
    return false;
}
bool WaveDeckTransformImpl::hostFlagB() {
    return true;
}
void WaveDeckTransformImpl::resetImpl() {}

WaveDeckDataProcStrategy::~WaveDeckDataProcStrategy() = default;
std::string WaveDeckDataProcStrategy::getUpdateEventName() {
    return "updateDataAsync";
}
std::string WaveDeckDataProcStrategy::getNoDataEventName() {
    return "onProcessNoData";
}
const std::string WaveDeckDataProcStrategy::mEmptyUUID;
const std::vector<std::string> WaveDeckDataProcStrategy::mEmptyUUIDs;

}  // namespace wavedeck
