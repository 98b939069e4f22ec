// The boundary of the module: whoever calls a flat function may be written in C, where an exception
// is the end of the process. So a flat function is one line inside this, or inside one of the
// helpers of api/ that are built on it.
#pragma once

#include <type_traits>

namespace pgkit {

// What the function gives; or the failure when anything is thrown on the way, be it for want of
// memory, by the standard library, or by a callback of the host.
template <typename Function, typename Result = std::invoke_result_t<Function&>>
requires(!std::is_void_v<Result>) Result
    Guarded(Function&& function, std::type_identity_t<Result> failure = Result())
noexcept {
    try {
        return function();
    } catch (...) {
        return failure;
    }
}

template <typename Function>
requires std::is_void_v<std::invoke_result_t<Function&>>
void Guarded(Function&& function) noexcept {
    try {
        function();
    } catch (...) {
        // This function has no result to report it with.
    }
}

}  // namespace pgkit
