#pragma once

namespace simcard {

// Gives this process, and those it starts, a network and a /run of their own: what is started there reaches
// no other program, and none reaches it. For good; the second time does nothing. Before any thread starts.
//
// Root may do it, another user where the system allows user namespaces.
// @throws std::system_error
void enter_own_machine();

} // namespace simcard
