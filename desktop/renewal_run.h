#pragma once

#include "desktop/card_worker.h"
#include "desktop/errand.h"
#include "desktop/given_pin.h"
#include "host/error.h"

#include <functional>
#include <memory>

namespace desktop {

// One errand on its way: planned with the PIN, then carried out. The engine works on the worker's thread; signals come on
// the window's.
class RenewalRun : public QObject {
    Q_OBJECT

  public:
    RenewalRun(CardWorker& worker, zvhost::CardChoice choice, Errand errand);
    ~RenewalRun() override;

    // Opens the card with the PIN and plans; nothing is changed.
    void plan(zvhost::Pin pin, bool final_try);
    // Carries out what was planned. Once.
    void carry_out();
    // Stops between two steps.
    void stop();

    [[nodiscard]] const Errand& errand() const { return errand_; }
    // Whether the card is being changed.
    [[nodiscard]] bool at_work() const { return at_work_; }

  Q_SIGNALS:
    void planned(const zvhost::Plan& plan);
    void stepped(const zvhost::Step& step);
    void noticed(const zvhost::Sentence& sentence);
    void ended(const zvhost::Renewal& renewal);
    void failed(const zvhost::Error& error);

  private:
    // What the engine uses; it goes when the work that uses it has ended.
    struct Shared;

    using Tell = std::function<void(std::function<void(RenewalRun&)>)>;

    // Has the work done on the thread; what it throws is told.
    void start(std::function<void(Shared&, const Tell&)> work);

    CardWorker& worker_;
    Errand errand_;
    std::shared_ptr<Shared> shared_;
    bool at_work_ = false;
};

} // namespace desktop
