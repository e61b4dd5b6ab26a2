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

#include <QMainWindow>
#include <QStackedWidget>
#include <QTimer>
#include <memory>
#include <optional>

namespace desktop {

// The program's window: which page follows which.
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
    void show_page(Page& page);
    void connect_pages();

    // What is there.
    void look();
    void take(const Situation& now);
    void show_start();

    // An errand.
    [[nodiscard]] Errand errand_for(zvhost::Kind kind) const;
    void renew(zvhost::Kind kind);
    void wait_for_certificate(zvhost::Kind kind);
    void take_certificate(const QString& file);
    void ask();
    void plan(const Errand& errand);
    void carry_out();
    void show_end(const zvhost::Renewal& renewal);
    void show_problem(const zvhost::Error& error);
    void remedy(ProblemPage::Remedy wanted);
    void help();

    zvhost::CardChoice choice_;
    std::string card_;
    Situation situation_;
    std::optional<Errand> errand_;
    bool closing_ = false;
    QStackedWidget* pages_;
    StartPage* start_;
    ConsentPage* consent_;
    WorkPage* work_;
    RequestPage* request_;
    DonePage* done_;
    ProblemPage* problem_;
    QTimer looks_;
    CardWorker worker_;
    std::unique_ptr<RenewalRun> run_;
};

} // namespace desktop
