#include "desktop/window.h"

#include "desktop/files.h"
#include "desktop/help_desk.h"
#include "desktop/text.h"
#include "host/foreseen.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QShortcut>
#include <QTimer>
#include <QUrl>
#include <utility>

namespace desktop {
namespace {

constexpr std::chrono::seconds LOOK_EVERY{1}; // where nobody tells of a change

} // namespace

Window::Window(zvhost::CardChoice choice, std::string card)
    : choice_(std::move(choice)), card_(std::move(card)), pages_(new QStackedWidget), start_(new StartPage),
      consent_(new ConsentPage), work_(new WorkPage), request_(new RequestPage), done_(new DonePage),
      problem_(new ProblemPage), watch_(choice_.module_dir) {
    setWindowTitle(text("window-title"));
    setAcceptDrops(true);
    setCentralWidget(pages_);
    for (Page* const page : std::initializer_list<Page*>{start_, consent_, work_, request_, done_, problem_})
        pages_->addWidget(page);
    connect_pages();
    connect(&waits_, &CardWorker::became_idle, this, &Window::look_if_changed);
    connect(&worker_, &CardWorker::became_idle, this, [this] {
        if (closing_) close();
    });
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, [this] {
        if (!shows(work_)) show_start();
    });
    look_if_changed();
}

Window::~Window() {
    watch_.wake();
}

void Window::connect_pages() {
    connect(start_, &StartPage::reader_chosen, this, [this](const QString& name) {
        choice_.reader = to_utf8(name);
        look();
    });
    connect(start_, &StartPage::renewal_wanted, this, [this](zvhost::Kind kind) { begin(errand_for(kind)); });
    const auto help = [this] { save_for_help_desk(*this, worker_, choice_.module_dir); };
    connect(start_, &StartPage::help_wanted, this, help);
    connect(start_, &StartPage::look_wanted, this, &Window::look);
    connect(problem_, &ProblemPage::help_wanted, this, help);
    connect(start_, &StartPage::waiting_wanted, this,
            [this](const zvhost::WaitingRenewal& renewal) { go_on(renewal); });
    connect(consent_, &ConsentPage::accepted, this, &Window::plan);
    connect(consent_, &ConsentPage::accepted_again, this, &Window::carry_out);
    connect(consent_, &ConsentPage::impossible, this, &Window::show_problem);
    connect(consent_, &ConsentPage::declined, this, &Window::show_start);
    connect(work_, &WorkPage::stop_wanted, this, [this] {
        if (run_) run_->stop();
    });
    connect(request_, &RequestPage::certificate_given, this, &Window::take_certificate);
    connect(request_, &RequestPage::request_wanted, this, [this] { begin(errand_); });
    connect(request_, &RequestPage::left, this, &Window::show_start);
    connect(done_, &DonePage::left, this, &Window::show_start);
    connect(problem_, &ProblemPage::remedy_wanted, this, &Window::follow);
    connect(problem_, &ProblemPage::left, this, &Window::show_start);
}

void Window::show_page(Page& page) {
    if (!shows(&page)) consent_->pin().wipe();
    pages_->setCurrentWidget(&page);
    show_title(page);
    page.announce();
}

void Window::show_title(const Page& page) {
    setWindowTitle(text("window-title-of", {{"page", to_utf8(page.heading())}}));
}

void Window::look() {
    worker_.start([this, choice = choice_, card = card_] {
        (void)watch_.changed(); // before the look, so that what changes meanwhile is seen
        worker_.tell([this, now = look_around(choice, card)] { take(now); });
    });
}

void Window::look_if_changed() {
    if (!worker_.idle() || shows(work_) || shows(done_) || shows(problem_))
        return QTimer::singleShot(LOOK_EVERY, this, &Window::look_if_changed);
    worker_.start([this, choice = choice_, card = card_, again = std::exchange(looks_again_, false)] {
        if (const bool changed = watch_.changed(); changed || again)
            if (const Situation now = look_around(choice, card); changed || !now.problem)
                worker_.tell([this, now] { take(now); });
        worker_.tell([this] { waits_.start([this] { watch_.wait(LOOK_EVERY); }); });
    });
}

// A card that is taken out takes its pages along: its PIN is for no other.
void Window::take(const Situation& now) {
    situation_ = now;
    looks_again_ = now.problem.has_value();
    const bool same = errand_.card.state && now.shows(errand_.card_serial());
    const bool begins = std::exchange(begins_, false);
    const bool has_answer = !errand_.certificate.empty();
    if (begins && now.problem && now.chosen() != nullptr && now.chosen()->state)
        return show_problem(*now.problem); // the card is there, and cannot be read
    if (same && (begins || (shows(request_) && has_answer)))
        show_consent();
    else if (begins && has_answer)
        show_waiting(errand_);
    else if (shows(start_)) {
        start_->show_situation(now);
        show_title(*start_);
    } else if (begins || (shows(consent_) && !same))
        show_start();
}

void Window::show_start() {
    if (std::exchange(run_, nullptr) != nullptr) return begin({}); // what was shown is no longer so
    errand_ = {};
    start_->show_situation(situation_);
    show_page(*start_);
    look();
}

Errand Window::errand_for(zvhost::Kind kind) const {
    Errand errand;
    errand.card = situation_.status->list.card;
    errand.wishes.request.kind = kind;
    errand.wishes.request.out = new_request_file(errand.card_serial(), zvhost::kind_name(kind));
    return errand;
}

void Window::go_on(const zvhost::WaitingRenewal& renewal) {
    Errand errand = errand_for(renewal.kind);
    if (!renewal.request.empty()) errand.wishes.request.out = renewal.request;
    if (!renewal.proved && !renewal.stored.empty())
        errand.certificate = to_utf8(file_with(QByteArray::fromStdString(renewal.stored)));
    if (!renewal.proved && errand.certificate.empty()) return show_waiting(errand);
    errand.finishes = true;
    errand.wishes.remove_old = renewal.proved; // nothing else is left
    begin(errand);
}

// The card is looked at first: what is asked is about the card as it is now.
void Window::begin(const Errand& errand) {
    errand_ = errand;
    begins_ = true;
    work_->begin({"window-looking-heading", {}});
    show_page(*work_);
    look();
}

void Window::show_consent() {
    errand_.card = situation_.status->list.card;
    show_page(*consent_);
    consent_->ask(*situation_.status, errand_);
    if (shows(consent_)) show_page(*consent_);
}

void Window::show_waiting(const Errand& errand) {
    errand_ = errand;
    request_->show_waiting(errand.kind(), errand.wishes.request.out);
    if (!errand.certificate.empty()) request_->say("insert-same-card");
    show_page(*request_);
}

void Window::take_certificate(const QString& file) {
    errand_.certificate = to_utf8(file);
    begin(errand_);
}

void Window::plan(const Errand& errand) {
    errand_ = errand;
    zvhost::CardChoice choice = choice_;
    choice.reader = errand.card.reader;
    run_ = std::make_unique<RenewalRun>(worker_, choice, errand);
    connect(run_.get(), &RenewalRun::planned, this, &Window::take_plan);
    connect(run_.get(), &RenewalRun::stepped, work_, &WorkPage::show_step);
    connect(run_.get(), &RenewalRun::noticed, work_, &WorkPage::show_notice);
    connect(run_.get(), &RenewalRun::ended, this, &Window::show_end);
    connect(run_.get(), &RenewalRun::failed, this, &Window::show_problem);
    run_->plan(consent_->pin().take(), consent_->pin().final_try());
    work_->begin({"window-work-heading", {}});
    show_page(*work_);
}

void Window::take_plan(const zvhost::Plan& plan) {
    if (!zvhost::goes_beyond(plan, consent_->foreseen())) return carry_out();
    consent_->ask_again(plan);
    show_page(*consent_);
}

void Window::carry_out() {
    show_page(*work_);
    run_->carry_out();
}

void Window::show_end(const zvhost::Renewal& renewal) {
    errand_.wishes.request.out = renewal.request;
    if (!renewal.done) return show_waiting(errand_);
    done_->show_done(renewal);
    show_page(*done_);
}

void Window::show_problem(const zvhost::Error& error) {
    problem_->show_problem(error, errand_);
    show_page(*problem_);
}

void Window::follow(const Remedy& remedy) {
    switch (remedy.goes) {
    case Remedy::Goes::to_errand:
        return begin(remedy.errand);
    case Remedy::Goes::to_certificate:
        return show_waiting(remedy.errand);
    case Remedy::Goes::to_start:
        break;
    }
    show_start();
}

void Window::closeEvent(QCloseEvent* event) {
    if (!run_ || !run_->at_work()) return event->accept();
    event->ignore();
    if (closing_) return;
    auto* const question =
        new QMessageBox(QMessageBox::Question, windowTitle(), text("window-close-question"),
                        QMessageBox::Yes | QMessageBox::No, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QDialog::accepted, this, [this] {
        closing_ = true;
        run_->stop();
        if (worker_.idle()) close();
    });
    question->open();
}

void Window::dragEnterEvent(QDragEnterEvent* event) {
    if (shows(request_) && event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void Window::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile()) return;
    event->acceptProposedAction();
    take_certificate(urls.front().toLocalFile());
}

} // namespace desktop
