#pragma once

#include <exception>
#include <type_traits>

// Where exceptions end: none leaves the library.
namespace zv {

// What body returns; when it throws, fallback, or what it returns if it is a function.
template <typename Fallback, typename Body> auto guarded(Fallback fallback, Body&& body) {
    try {
        if constexpr (std::is_invocable_v<Fallback>)
            return static_cast<std::invoke_result_t<Fallback>>(body());
        else
            return static_cast<Fallback>(body());
    } catch (const std::exception&) {
        if constexpr (std::is_invocable_v<Fallback>)
            return fallback();
        else
            return fallback;
    }
}

// Runs body as far as it gets.
template <typename Body> void guarded(Body&& body) {
    try {
        body();
    } catch (const std::exception&) {
        return;
    }
}

} // namespace zv
