#include "words/on_card.h"

#include "words/language.h"
#include "words/words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace words {
namespace {

const char* certificates_in_words(std::size_t count, bool private_key) {
    if (count > 1)
        return private_key ? N_("several certificates and keys") : N_("several certificates alone");
    return private_key ? N_("certificate and keys") : N_("certificate alone");
}

const char* state_of(const zvhost::Held& held) {
    if (held.certificates > 0) return certificates_in_words(held.certificates, held.private_key);
    if (held.public_key && held.private_key) return N_("keys without a certificate");
    if (held.private_key) return N_("private key alone");
    return held.public_key ? N_("public key alone") : N_("data");
}

} // namespace

std::string of(const zvhost::OnCard& contents) {
    if (contents.untouched) return tr("what was on it before: nothing was changed");
    if (!contents.problem.empty())
        return of(zvhost::Sentence{"card-unread", {{"reason", std::vector{contents.problem}}}});
    std::vector<std::string> parts;
    parts.reserve(contents.held.size());
    for (const zvhost::Held& one : contents.held)
        parts.push_back(fmt::format("{} ({})", one.id, tr(state_of(one))));
    return parts.empty() ? tr("nothing") : fmt::format("{}", fmt::join(parts, ", "));
}

} // namespace words
