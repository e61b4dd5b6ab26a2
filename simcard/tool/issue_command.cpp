#include "simcard/authority/certificate_file.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"
#include "simcard/authority/name.h"
#include "simcard/authority/renewal.h"
#include "simcard/tool/commands.h"

#include <iostream>
#include <memory>

namespace simcard {
namespace {

struct IssueOptions {
    std::string request;
    std::string kind;
    std::string out;
    RenewalTerms terms;
    bool der = false;
    bool bundle = false;
};

void issue(IssueOptions& options, const std::filesystem::path& home) {
    if (options.terms.days < 1 || options.terms.days > longest_days)
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

} // namespace

void add_issue_command(CLI::App& program, const Home& home) {
    CLI::App& command =
        *program.add_subcommand("issue", "Verifies a signed request and issues the certificate");
    const auto options = std::make_shared<IssueOptions>();
    command.add_option("request", options->request, "Request file: base64, PEM or binary PKCS#7")->required();
    command.add_option("--kind", options->kind,
                       "signature, authentication or cns (default: the kind of the certificate that signed)");
    command.add_option("--days", options->terms.days, "Days that the certificate holds")
        ->capture_default_str();
    command.add_flag("--bare", options->terms.bare_requests,
                     "Take a PKCS#10 request that nobody signed; needs --kind");
    command.add_option("--out", options->out, "File to write (default: standard output)");
    command.add_flag("--der", options->der, "Binary instead of PEM");
    command.add_flag("--p7b", options->bundle, "A PKCS#7 bundle with the authority's certificate");
    command.callback([options, &home] { issue(*options, home.path()); });
}

} // namespace simcard
