#include "host/suitability.h"

#include "host/certificate_facts.h"
#include "host/certificate_record.h"
#include "host/error.h"
#include "host/holder.h"
#include "host/old_certificate.h"

#include <algorithm>
#include <ctime>

namespace zvhost {
namespace {

constexpr std::time_t SOON = 10L * 60; // clocks differ

struct Objection {
    std::string name;
    Sentence sentence;
};
using Objections = std::vector<Objection>;

// @param goes  the old certificate
void object_to_dates(Objections& objections, const InstallPlan& plan, X509& certificate, bool goes) {
    const std::time_t now = std::time(nullptr);
    const std::time_t begins = begin_of(certificate).value_or(now);
    const std::time_t ends = end_of(certificate).value_or(0);
    if (ends < now) objections.push_back({"expired", {"has-ended", {{"ends", Moment{ends}}}}});
    if (!goes || !plan.old) return;
    const Certificate old = certificate_from(plan.old->der);
    const std::time_t old_ends = old ? end_of(*old).value_or(0) : 0;
    if (ends < old_ends)
        objections.push_back(
            {"ends-earlier", {"ends-before-old", {{"ends", Moment{ends}}, {"old_ends", Moment{old_ends}}}}});
    if (begins > now + SOON)
        objections.push_back({"starts-later", {"begins-later", {{"begins", Moment{begins}}}}});
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
    objections.push_back(
        {"holder", {"other-holder", {{"holder", holder.shown}, {"known", known.front().shown}}}});
}

void object_to_purpose(Objections& objections, const InstallPlan& plan, X509& certificate) {
    if (const std::string usage = missing_usage(certificate, plan.kind); !usage.empty())
        objections.push_back({"purpose", {"other-purpose", {{"kind", plan.kind}, {"usage", usage}}}});
}

// What is to be typed has no blanks in its list.
std::string accept_option(const std::vector<std::string>& names) {
    std::string option = "--accept ";
    for (const std::string& name : names)
        option += (&name == names.data() ? "" : ",") + name;
    return option;
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
    std::vector<Sentence> reasons;
    for (const auto& [name, sentence] : objections) {
        names.push_back(name);
        reasons.push_back(sentence);
    }
    throw Error(Exit::refused, {"certificate-of-no-use", {{"reasons", reasons}}},
                Advice{"accept", {"accept-anyway", {{"option", accept_option(names)}}}, {{"accept", names}}});
}

Sentence new_issuer(const InstallPlan& plan) {
    const Certificate now = certificate_from(plan.certificate);
    const Certificate before = plan.old ? certificate_from(plan.old->der) : Certificate();
    if (!now || !before ||
        X509_NAME_cmp(X509_get_issuer_name(now.get()), X509_get_issuer_name(before.get())) == 0)
        return {};
    return {"other-issuer",
            {{"issuer", issuer_of(*now).readable()}, {"old_issuer", issuer_of(*before).readable()}}};
}

} // namespace zvhost
