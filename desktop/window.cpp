#include "desktop/window.h"

#include "desktop/files.h"
#include "desktop/text.h"
#include "host/foreseen.h"
#include "host/journal.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>
#include <utility>

namespace desktop {
namespace {

constexpr int LOOK_EVERY = 1000; // milliseconds

} // namespace

Window::Window(zvhost::CardChoice choice, std::string card)
    : choice_(std::move(choice)), card_(std::move(card)), pages_(new QStackedWidget), start_(new StartPage),
      consent_(new ConsentPage), work_(new WorkPage), request_(new RequestPage), done_(new DonePage),
      problem_(new ProblemPage) {
    setWindowTitle(text("window-title"));
    setAcceptDrops(true);
    setCentralWidget(pages_);
    for (Page* const page : std::initializer_list<Page*>{start_, consent_, work_, request_, done_, problem_})
        pages_->addWidget(page);
    connect_pages();
    connect(&looks_, &QTimer::timeout, this, [this] {
        if (worker_.idle() && pages_->currentWidget() == start_) look();
    });
    connect(&worker_, &CardWorker::became_idle, this, [this] {
        if (closing_) close();
    });
    looks_.start(LOOK_EVERY);
    look();
}

Window::~Window() = default;

void Window::connect_pages() {
    connect(start_, &StartPage::reader_chosen, this, [this](const QString& name) {
        choice_.reader = to_utf8(name);
        look();
    });
    connect(start_, &StartPage::renewal_wanted, this, &Window::renew);
    connect(start_, &StartPage::waiting_wanted, this, &Window::wait_for_certificate);
    connect(start_, &StartPage::help_wanted, this, &Window::help);
    connect(consent_, &ConsentPage::accepted, this, &Window::plan);
    connect(consent_, &ConsentPage::accepted_again, this, &Window::carry_out);
    connect(consent_, &ConsentPage::declined, this, &Window::show_start);
    connect(work_, &WorkPage::stop_wanted, this, [this] {
        if (run_) run_->stop();
    });
    connect(request_, &RequestPage::certificate_given, this, &Window::take_certificate);
    connect(request_, &RequestPage::request_wanted, this, &Window::ask);
    connect(request_, &RequestPage::left, this, &Window::show_start);
    connect(done_, &DonePage::left, this, &Window::show_start);
    connect(problem_, &ProblemPage::remedy_wanted, this, &Window::remedy);
    connect(problem_, &ProblemPage::help_wanted, this, &Window::help);
    connect(problem_, &ProblemPage::left, this, &Window::show_start);
}

// The page's heading is the window's title, too: a screen reader says it.
void Window::show_page(Page& page) {
    pages_->setCurrentWidget(&page);
    setWindowTitle(text("window-title-of", {{"page", to_utf8(page.heading())}}));
    if (QWidget* const first = page.first()) first->setFocus();
}

void Window::look() {
    worker_.start([this, choice = choice_] {
        const Situation now = look_around(choice);
        worker_.tell([this, now] { take(now); });
    });
}

void Window::take(const Situation& now) {
    situation_ = now;
    if (pages_->currentWidget() == start_) start_->show_situation(now);
}

void Window::show_start() {
    run_.reset();
    errand_.reset();
    start_->show_situation(situation_);
    show_page(*start_);
    look();
}

Errand Window::errand_for(zvhost::Kind kind) const {
    Errand errand;
    errand.card = situation_.status->list.card;
    errand.wishes.request.kind = kind;
    errand.wishes.request.out = new_request_file(errand.card_serial(), zvhost::kind_name(kind));
    const zvhost::RememberedCard remembered = zvhost::Journal().card(errand.card_serial());
    if (const zvhost::RememberedRenewal* renewal = remembered.renewal(kind);
        renewal != nullptr && !renewal->request.empty())
        errand.wishes.request.out = renewal->request;
    return errand;
}

void Window::renew(zvhost::Kind kind) {
    errand_ = errand_for(kind);
    ask();
}

void Window::wait_for_certificate(zvhost::Kind kind) {
    errand_ = errand_for(kind);
    request_->show_waiting(kind, errand_->wishes.request.out);
    show_page(*request_);
}

void Window::take_certificate(const QString& file) {
    errand_->certificate = to_utf8(file);
    ask();
}

void Window::ask() {
    consent_->ask(*situation_.status, *errand_);
    show_page(*consent_);
}

void Window::plan(const Errand& errand) {
    errand_ = errand;
    zvhost::CardChoice choice = choice_;
    choice.reader = errand.card.reader;
    run_ = std::make_unique<RenewalRun>(worker_, choice, errand);
    connect(run_.get(), &RenewalRun::planned, this, [this](const zvhost::Plan& plan) {
        if (!zvhost::goes_beyond(plan, consent_->foreseen())) return carry_out();
        consent_->ask_again(plan);
        show_page(*consent_);
    });
    connect(run_.get(), &RenewalRun::stepped, work_, &WorkPage::show_step);
    connect(run_.get(), &RenewalRun::noticed, work_, &WorkPage::show_notice);
    connect(run_.get(), &RenewalRun::ended, this, &Window::show_end);
    connect(run_.get(), &RenewalRun::failed, this, &Window::show_problem);
    work_->begin({"window-work-heading", {{"kind", errand.kind()}}});
    show_page(*work_);
    run_->plan(consent_->pin().take(), consent_->pin().final_try());
}

void Window::carry_out() {
    show_page(*work_);
    run_->carry_out();
}

void Window::show_end(const zvhost::Renewal& renewal) {
    errand_->wishes.request.out = renewal.request;
    if (renewal.done) {
        done_->show_done(renewal);
        return show_page(*done_);
    }
    request_->show_waiting(renewal.kind, renewal.request);
    show_page(*request_);
    look(); // the card holds more now
}

void Window::show_problem(const zvhost::Error& error) {
    problem_->show_problem(error);
    show_page(*problem_);
}

void Window::remedy(ProblemPage::Remedy wanted) {
    if (wanted == ProblemPage::Remedy::again && errand_ && situation_.status) return ask();
    show_start();
}

void Window::help() {}

void Window::closeEvent(QCloseEvent* event) {
    if (!run_ || !run_->at_work() || closing_) return event->accept();
    event->ignore();
    auto* const question =
        new QMessageBox(QMessageBox::Question, windowTitle(), text("window-close-question"),
                        QMessageBox::Yes | QMessageBox::No, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::accepted, this, [this] {
        closing_ = true;
        if (run_) run_->stop();
        if (worker_.idle()) close();
    });
    question->open();
}

void Window::dragEnterEvent(QDragEnterEvent* event) {
    if (pages_->currentWidget() == request_ && event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void Window::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile()) return;
    event->acceptProposedAction();
    take_certificate(urls.front().toLocalFile());
}

} // namespace desktop
