#pragma once

#include "tests/flows/flow.h"

#include <functional>
#include <map>

namespace zvtest {

// A card and its host, without a test around them.
class SweepCard : public Flow {
  public:
    explicit SweepCard(const char* profile) : Flow({.profile = &simcard::profile_named(profile)}) {}
    void TestBody() override {}

    using Flow::card, Flow::find_free, Flow::issue, Flow::log, Flow::module, Flow::path, Flow::PIN,
        Flow::read;
    using Flow::pair_works, Flow::request, Flow::request_authentication, Flow::save,
        Flow::save_authentication, Flow::tries_left;

    std::string certificate; // what the authority issued for the pending pair
};

// What the authority is said to answer to a request that it does not take.
inline constexpr const char* REFUSAL = "refused";

// What the host gets from a call.
struct Answer {
    int result = 0;
    std::string data;
};

// What a host does with the card.
using Use = Answer (*)(SweepCard&);

// A flow under test: what went before it, what the host calls, what it is there to delete.
struct FlowPlan {
    const char *name, *title, *profile;
    const char* pending; // identifier of the pair that it makes or certifies
    std::vector<Use> before;
    Use run;
    const char* deletes; // a pattern of the objects that it may delete
    // What the host is told to do where the flow itself cannot be finished; null when it always can.
    Use remedy = nullptr;
};

const std::vector<FlowPlan>& flow_plans();

// Who learns of a failure: the host by code or text, a reader of the log the code or only the step, or nobody.
enum Told { host, code, step, nobody, told };

// One run of a flow.
struct Attempt {
    int result = 0;
    std::size_t data = 0; // hash of what the host got
    Told told = nobody;
    unsigned long logins = 0;
    bool spent_try = false, open = false; // a PIN try; the module, left initialised
};

// Sorted lines "class|identifier|last day|works", a certificate "works" when a signature verifies with it.
using Objects = std::vector<std::string>;

// The files of the card's folder but card.ini, by name.
using Files = std::map<std::string, std::string>;

// A flow on a card to one of whose calls something is done, and what came of it.
struct Trial {
    bool killed = false, crashed = false, leaked = false;
    bool stuck = false; // the module was initialised even after DoFinalize
    Attempt first, second, remedy;
    Objects between, after, remedied; // on the card after each
};

// A card prepared for a flow, on which trials are made; each starts from the same state.
class Bench {
  public:
    explicit Bench(const FlowPlan& plan);
    // With a rule for the calls, and the result that the library sees by it; 0 when the rule does not say.
    Trial run(const std::string& rule, CK_RV code);

    const FlowPlan& plan;
    Objects start;                      // what is on the card before
    std::vector<std::string> functions; // that the flow calls, in order
    Trial undisturbed;

  private:
    struct Shared;

    Attempt attempt(Use use, CK_RV code);
    void try_twice(const std::string& rule, CK_RV code);
    void run_apart(Trial& trial, const std::function<void()>& work);
    Objects objects_of(const Files& files);

    SweepCard host_;
    Shared& shared_;
    Files files_;
};

} // namespace zvtest
