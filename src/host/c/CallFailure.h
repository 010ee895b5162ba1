#pragma once

#include <exception>
#include <string>
#include <utility>

/// What wavedeck_error() gives on this thread.
std::string& callFailure();

/// Runs `call`, and turns what it throws into the text of wavedeck_error() and the result `failed`.
template <typename Result, typename Call>
Result guarded(Result failed, Call&& call) {
    callFailure().clear();
    try {
        return std::forward<Call>(call)();
    } catch (const std::exception& thrown) {
        callFailure() = thrown.what();
    } catch (...) {
        callFailure() = "an unknown failure";
    }
    return failed;
}
