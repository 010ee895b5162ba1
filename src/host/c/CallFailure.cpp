#include "CallFailure.h"

#include "wavedeck.h"

std::string& callFailure() {
    thread_local std::string text;
    return text;
}

const char* wavedeck_error(void) {
    return callFailure().c_str();
}
