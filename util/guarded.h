#ifndef ZV_UTIL_GUARDED_H
#define ZV_UTIL_GUARDED_H

#include <exception>

/** Where exceptions end: none leaves the library. */
namespace zv {

/** What body returns; fallback when it throws. */
template <typename Result, typename Body> Result guarded(Result fallback, Body&& body) {
    try {
        return body();
    } catch (const std::exception&) {
        return fallback;
    }
}

/** Runs body as far as it gets. */
template <typename Body> void guarded(Body&& body) {
    try {
        body();
    } catch (const std::exception&) {
        return;
    }
}

} // namespace zv

#endif
