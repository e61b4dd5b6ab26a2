#pragma once

#include "host/pin_gate.h"

#include <exception>

namespace zvhost {

// What is thrown on: it takes along which card it is about and, after a failure, what is on it then.
[[nodiscard]] Error with_card(OpenedCard& card, Error error);

// Does what is done with an opened card. @throws Error
template <class Work> auto about_card(OpenedCard& card, const Work& work) {
    try {
        return work();
    } catch (const Error& error) {
        throw with_card(card, error);
    } catch (const std::exception& error) {
        throw with_card(card, {Exit::failed, {"unexpected", {{"text", error.what()}}}});
    }
}

} // namespace zvhost
