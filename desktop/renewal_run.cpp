#include "desktop/renewal_run.h"

#include <QPointer>
#include <atomic>
#include <optional>
#include <utility>

namespace desktop {

struct RenewalRun::Shared {
    Shared(zvhost::CardChoice which, const Errand& errand)
        : choice(std::move(which)), authority(errand.certificate) {}

    zvhost::CardChoice choice;
    AuthorityByHand authority;
    std::optional<GivenPin> pin;
    std::optional<zvhost::PlannedRenewal> planned;
    std::atomic<bool> stopped = false;

    // Nothing more is done: nobody needs the PIN.
    void end() {
        planned.reset();
        pin.reset();
    }
};

namespace {

// Tells the window how it goes.
class ToldProgress : public zvhost::Progress {
  public:
    using Tell = std::function<void(std::function<void(RenewalRun&)>)>;

    ToldProgress(Tell tell, const std::atomic<bool>& stopped) : tell_(std::move(tell)), stopped_(stopped) {}

    void notice(const zvhost::Sentence& sentence) override {
        tell_([sentence](RenewalRun& run) { Q_EMIT run.noticed(sentence); });
    }
    void step(const zvhost::Step& step) override {
        tell_([step](RenewalRun& run) { Q_EMIT run.stepped(step); });
    }
    [[nodiscard]] bool cancelled() override { return stopped_; }

  private:
    Tell tell_;
    const std::atomic<bool>& stopped_;
};

} // namespace

RenewalRun::RenewalRun(CardWorker& worker, zvhost::CardChoice choice, Errand errand)
    : worker_(worker), errand_(std::move(errand)),
      shared_(std::make_shared<Shared>(std::move(choice), errand_)) {}

RenewalRun::~RenewalRun() = default;

void RenewalRun::stop() {
    shared_->stopped = true;
}

void RenewalRun::start(std::function<void(Shared&, const Tell&)> work) {
    const Tell tell = [&worker = worker_, run = QPointer(this)](std::function<void(RenewalRun&)> what) {
        worker.tell([run, what = std::move(what)] {
            if (run) what(*run);
        });
    };
    worker_.start([shared = shared_, work = std::move(work), tell] {
        const auto fail = [&](const zvhost::Error& error) {
            shared->end();
            tell([error](RenewalRun& run) {
                run.at_work_ = false;
                Q_EMIT run.failed(error);
            });
        };
        try {
            work(*shared, tell);
        } catch (const zvhost::Error& error) {
            fail(error);
        } catch (const std::exception& error) {
            fail({zvhost::Exit::failed, {"unexpected", {{"text", error.what()}}}});
        }
    });
}

void RenewalRun::plan(zvhost::Pin pin, bool final_try) {
    shared_->pin.emplace(std::move(pin), errand_.card_serial(), final_try);
    start([wishes = errand_.wishes](Shared& shared, const Tell& tell) {
        shared.planned = zvhost::plan_renewal(wishes, shared.choice, *shared.pin, shared.authority);
        tell([plan = shared.planned->plan()](RenewalRun& run) { Q_EMIT run.planned(plan); });
    });
}

void RenewalRun::carry_out() {
    at_work_ = true;
    start([](Shared& shared, const Tell& tell) {
        ToldProgress progress(tell, shared.stopped);
        const zvhost::Renewal renewal = shared.planned->apply(progress);
        shared.end();
        tell([renewal](RenewalRun& run) {
            run.at_work_ = false;
            Q_EMIT run.ended(renewal);
        });
    });
}

} // namespace desktop
