// renew MODULES AUTHORITY IDENTIFIER [remove]: renews one certificate of the only card, with the engine.
//
// MODULES is the folder of the cards' PKCS#11 modules, AUTHORITY a program that is run as "AUTHORITY REQUEST CERTIFICATE"
// and writes the certificate for a request. The PIN is the first line of standard input. With "remove" the old
// certificate and its keys go from the card. The same command again goes on where a failure left the card.
#include <host/card_list.h>
#include <host/log_folder.h>
#include <host/readers.h>
#include <host/renew.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

// What is told is an identifier and values: a host has its own words for each, in its own languages. This one has none.
void tell(std::ostream& out, const zvhost::Sentence& sentence) {
    out << sentence.id;
    for (const auto& [name, value] : sentence.values) {
        out << ' ' << name << '=';
        std::visit(
            [&out](const auto& is) {
                using Is = std::decay_t<decltype(is)>;
                if constexpr (std::is_same_v<Is, std::string> || std::is_arithmetic_v<Is>) out << is;
                if constexpr (std::is_same_v<Is, zvhost::Kind>) out << zvhost::kind_name(is);
                if constexpr (std::is_same_v<Is, zvhost::Moment>) out << zvhost::day_of(is.time);
                if constexpr (std::is_same_v<Is, std::vector<std::string>>)
                    for (const std::string& text : is)
                        out << text << ',';
            },
            value);
    }
    out << '\n';
}

// The PIN: read once, given to each card that is opened. An engine's Pin is wiped with it and in no swap.
class FirstLine : public zvhost::PinSource {
  public:
    FirstLine() {
        std::setvbuf(stdin, nullptr, _IONBF, 0); // leaves no copy behind
        for (int c = std::getchar(); c != EOF && c != '\n'; c = std::getchar())
            pin_.add(static_cast<char>(c));
    }

    // The engine found the card and looked at its tries: a locked PIN, or the last try, does not come here.
    zvhost::Pin ask(const zvhost::CardFacts& card) override {
        std::cout << "PIN for " << card.reader << '\n';
        zvhost::Pin copy;
        for (const char c : pin_.view())
            copy.add(c);
        zvhost::check_pin_form(copy); // of a wrong form it would cost a try for nothing
        return copy;
    }

  private:
    zvhost::Pin pin_;
};

class Program : public zvhost::Authority {
  public:
    explicit Program(std::string path) : path_(std::move(path)) {}

    // No session is open meanwhile. An empty answer means "not yet": the same renewal goes on another day.
    std::string ask(const std::string&) override {
        const std::string command = '"' + path_ + "\" request.b64 certificate.pem";
        return std::system(command.c_str()) == 0 ? "certificate.pem" : "";
    }

  private:
    std::string path_;
};

class Shown : public zvhost::Progress {
  public:
    void notice(const zvhost::Sentence& sentence) override { tell(std::cout, sentence); }
    void step(const zvhost::Step& step) override {
        std::cout << step.number << " of " << step.of << ": ";
        tell(std::cout, step.what);
    }
};

void show(const zvhost::Plan& plan) {
    for (const zvhost::Change& change : plan.changes) {
        std::cout << zvhost::word_for(change.action) << ' ' << zvhost::word_for(change.what) << ' '
                  << change.id << ": ";
        tell(std::cout, change.why);
    }
    for (const zvhost::Sentence& notice : plan.notices)
        tell(std::cout, notice);
}

zvhost::Kind kind_of(std::string_view id) {
    return zv::kind_of_certificate(id, id == zv::OWN_PAIR);
}

int renew(const std::string& modules, const std::string& authority_path, const std::string& id, bool remove) {
    zvhost::CardChoice choice;
    choice.module_dir = modules;
    for (const zvhost::ReaderFacts& facts : zvhost::look_into_readers(modules).readers) // spends no try
        std::cout << facts.reader.name << ": " << facts.reader.state << '\n';

    FirstLine pin;
    Program authority(authority_path);
    zvhost::RenewalWishes wishes;
    wishes.request.kind = kind_of(id);
    wishes.request.certificate = id;
    wishes.request.out = "request.b64";
    wishes.remove_old = remove;

    zvhost::PlannedRenewal planned = zvhost::plan_renewal(wishes, choice, pin, authority);
    show(planned.plan()); // nothing is changed yet: a window asks here
    Shown shown;
    const zvhost::Renewal renewal = planned.apply(shown);
    if (!renewal.done) {
        std::cout << "It waits for its certificate: " << renewal.request << '\n';
        return 12;
    }
    for (const zvhost::ListedCertificate& listed :
         zvhost::list_card(choice, pin, zvhost::USUAL_DAYS).certificates)
        std::cout << listed.record.id << " ends on " << zvhost::day_of(listed.record.ends) << '\n';
    std::cout << renewal.pair << " is on the card with its keys"
              << (renewal.removed.empty() ? "" : "; the old certificate is not") << '\n';
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4 || argc > 5 || (argc == 5 && std::string_view(argv[4]) != "remove")) return 2;
    try {
        if (const zvhost::Sentence problem = zvhost::make_log_folder(); !problem.empty())
            tell(std::cerr, problem);
        return renew(argv[1], argv[2], argv[3], argc == 5);
    } catch (const zvhost::Error& error) {
        tell(std::cerr, error.sentence);
        if (error.code) std::cerr << "code " << *error.code << '\n';
        for (const zvhost::Advice& advice : error.advice)
            tell(std::cerr, advice.says);
        if (error.card) // what the failure left
            for (const zvhost::Held& held : error.card->held)
                std::cerr << held.id << ": " << held.certificates << " certificates"
                          << (held.private_key ? ", keys" : "") << '\n';
        return static_cast<int>(error.exit);
    }
}
