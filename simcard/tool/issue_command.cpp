#include "simcard/authority/certificate_file.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"
#include "simcard/authority/name.h"
#include "simcard/tool/commands.h"

#include <iostream>

namespace simcard {

void issue(IssueOptions& options, const std::filesystem::path& home) {
    if (options.terms.days < 1 || options.terms.days > LONGEST_DAYS)
        throw Refusal("A certificate is issued for 1 day to 10 years.");
    if (!options.kind.empty()) options.terms.kind = &kind_named(options.kind);
    const Authority authority = Authority::open(Authority::folder_beside_cards(home));
    const Renewal renewal = answer_request(authority, read_file(options.request), options.terms);
    for (const std::string& notice : renewal.request.notices)
        std::cerr << "Note: " << notice << '\n';

    const CertificateForm form = options.der ? CertificateForm::der : CertificateForm::pem;
    X509& certificate = *renewal.certificate;
    const std::string text = options.bundle ? bundle_text(certificate, authority.certificate(), form)
                                            : certificate_text(certificate, form);
    if (options.out.empty()) {
        std::cout << text;
        return;
    }
    write_file(options.out, text, Access::everyone_reads);
    std::cout << "Issued a certificate of kind " << renewal.kind.name << " for "
              << readable(*X509_get_subject_name(&certificate)) << ", for " << options.terms.days
              << " days: " << options.out << ".\n";
}

} // namespace simcard
