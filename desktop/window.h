#pragma once

#include "desktop/card_worker.h"
#include "desktop/consent_page.h"
#include "desktop/done_page.h"
#include "desktop/problem_page.h"
#include "desktop/renewal_run.h"
#include "desktop/request_page.h"
#include "desktop/situation.h"
#include "desktop/start_page.h"
#include "desktop/work_page.h"
#include "host/reader_watch.h"

#include <QMainWindow>
#include <QStackedWidget>
#include <memory>
#include <optional>

namespace desktop {

// The program's window: which page follows which. It follows what comes and goes, but not while the card is at work.
class Window : public QMainWindow {
    Q_OBJECT

  public:
    // @param card  serial number of the card that is meant; empty: whichever is there
    Window(zvhost::CardChoice choice, std::string card);
    ~Window() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void connect_pages();
    void show_page(Page& page);
    void show_title(const Page& page);
    [[nodiscard]] bool shows(const Page* page) const { return pages_->currentWidget() == page; }

    // What is there.
    void look();
    void look_if_changed();
    void take(const Situation& now);
    void show_start();

    // What is wanted.
    [[nodiscard]] Errand errand_for(zvhost::Kind kind) const;
    void go_on(const zvhost::WaitingRenewal& renewal);
    void begin(const Errand& errand);
    void show_consent();
    void show_waiting(const Errand& errand);
    void take_certificate(const QString& file);

    // What is done.
    void plan(const Errand& errand);
    void take_plan(const zvhost::Plan& plan);
    void carry_out();
    void show_end(const zvhost::Renewal& renewal);
    void show_problem(const zvhost::Error& error);
    void follow(const Remedy& remedy);

    zvhost::CardChoice choice_;
    std::string card_;
    Situation situation_;
    Errand errand_;
    bool begins_ = false;      // the errand, once the card was looked at
    bool closing_ = false;     // once the card is left alone
    bool looks_again_ = false; // once, where a look failed: what failed may not have lasted
    QStackedWidget* pages_;
    StartPage* start_;
    ConsentPage* consent_;
    WorkPage* work_;
    RequestPage* request_;
    DonePage* done_;
    ProblemPage* problem_;
    zvhost::ReaderWatch watch_;
    CardWorker waits_; // for readers and cards that come and go
    CardWorker worker_;
    std::unique_ptr<RenewalRun> run_;
};

} // namespace desktop
