#include "host/suitability.h"

#include "host/certificate_facts.h"
#include "host/certificate_record.h"
#include "host/error.h"
#include "host/holder.h"
#include "host/old_certificate.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ctime>

namespace zvhost {
namespace {

constexpr std::time_t SOON = 10L * 60; // clocks differ

struct Objection {
    std::string name;
    std::string sentence;
};
using Objections = std::vector<Objection>;

// @param goes  the old certificate
void object_to_dates(Objections& objections, const InstallPlan& plan, X509& certificate, bool goes) {
    const std::time_t now = std::time(nullptr);
    const std::time_t begins = begin_of(certificate).value_or(now);
    const std::time_t ends = end_of(certificate).value_or(0);
    if (ends < now) objections.push_back(Objection{"expired", fmt::format("It ended on {}.", day_of(ends))});
    if (!goes || !plan.old) return;
    const Certificate old = certificate_from(plan.old->der);
    const std::time_t old_ends = old ? end_of(*old).value_or(0) : 0;
    if (ends < old_ends)
        objections.push_back(Objection{"ends-earlier", fmt::format("It ends on {}, before the old one ({}).",
                                                                   day_of(ends), day_of(old_ends))});
    if (begins > now + SOON)
        objections.push_back(
            Objection{"starts-later", fmt::format("It does not begin before {}.", day_of(begins))});
}

// Whose certificate the new one has to be; none when nothing on the card says it.
std::vector<Holder> holders(const InstallPlan& plan, const IssuedFiles& files, const CardView& view) {
    if (plan.old) return {holder_of(plan.old->der)};
    if (!files.signer.empty()) return {holder_of(files.signer)};
    std::vector<Holder> found;
    for (const CardObject& object : view.objects())
        if (object.type == CKO_CERTIFICATE && !is_authority(object) &&
            view.find(CKO_PRIVATE_KEY, object.id) != nullptr)
            found.push_back(holder_of(without_padding(object.value)));
    return found;
}

void object_to_holder(Objections& objections, const std::vector<Holder>& known, const Holder& holder) {
    const auto same = [&](const Holder& one) { return same_holder(one, holder); };
    if (known.empty() || std::any_of(known.begin(), known.end(), same)) return;
    objections.push_back(Objection{
        "holder", fmt::format("It is for {}, and the card is of {}.", holder.shown, known.front().shown)});
}

void object_to_purpose(Objections& objections, const InstallPlan& plan, X509& certificate) {
    if (const std::string usage = missing_usage(certificate, plan.kind); !usage.empty())
        objections.push_back(Objection{
            "purpose", fmt::format("It is for another purpose: a {} certificate has the key usage {}.",
                                   kind_name(plan.kind), usage)});
}

} // namespace

const std::vector<std::string>& accepted_reasons() {
    static const std::vector<std::string> names{"expired", "holder", "purpose", "ends-earlier",
                                                "starts-later"};
    return names;
}

void refuse_worthless(const InstallWishes& wishes, const InstallPlan& plan, const IssuedFiles& files,
                      const CardView& view) {
    Objections objections;
    const Certificate certificate = certificate_from(plan.certificate);
    object_to_dates(objections, plan, *certificate, !plan.removed.empty() || wishes.removed_later);
    object_to_holder(objections, holders(plan, files, view), holder_of(plan.certificate));
    object_to_purpose(objections, plan, *certificate);
    std::erase_if(objections, [&](const Objection& one) {
        return std::find(wishes.accept.begin(), wishes.accept.end(), one.name) != wishes.accept.end();
    });
    if (objections.empty()) return;
    std::vector<std::string> names = wishes.accept;
    std::string sentence = "The certificate is of no use here.";
    for (const auto& [name, text] : objections) {
        names.push_back(name);
        sentence += " " + text;
    }
    throw Error(Exit::refused, sentence,
                Advice{"accept",
                       fmt::format("Ask the authority. To install it all the same, give --accept {}.",
                                   fmt::join(names, ",")),
                       {{"accept", names}}});
}

std::string new_issuer(const InstallPlan& plan) {
    const Certificate now = certificate_from(plan.certificate);
    const Certificate before = plan.old ? certificate_from(plan.old->der) : Certificate();
    if (!now || !before ||
        X509_NAME_cmp(X509_get_issuer_name(now.get()), X509_get_issuer_name(before.get())) == 0)
        return {};
    return fmt::format("Another authority issued it: {}; the old one was issued by {}.",
                       issuer_of(*now).readable(), issuer_of(*before).readable());
}

} // namespace zvhost
