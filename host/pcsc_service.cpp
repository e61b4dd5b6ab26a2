#include "host/pcsc_service.h"

#include "host/service_context.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zvhost {

PcscService ask_service() {
    PcscService service;
    const ServiceContext context;
    service.code = static_cast<std::uint32_t>(context.result());
    service.answers = context.is_open();
    if (!service.answers) return service;
    const std::vector<std::string> names = context.readers();
    std::vector<SCARD_READERSTATE> states(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        states[i].szReader = names[i].c_str();
        states[i].dwCurrentState = SCARD_STATE_UNAWARE;
    }
    if (!states.empty())
        (void)::SCardGetStatusChange(context.get(), 0, states.data(), static_cast<DWORD>(states.size()));
    std::transform(states.begin(), states.end(), std::back_inserter(service.readers), seen_in);
    return service;
}

} // namespace zvhost
