#pragma once

#include <QObject>
#include <QThread>
#include <functional>

namespace desktop {

// Where cards are worked with: a thread of its own, one call behind the other, so that the window never waits for a card.
class CardWorker : public QObject {
    Q_OBJECT

  public:
    CardWorker();
    // Waits for what was begun.
    ~CardWorker() override;

    // Does the work on the thread, behind what was given before.
    void start(std::function<void()> work);
    // Has something done by the window, from within the work.
    void tell(std::function<void()> what);
    [[nodiscard]] bool idle() const { return given_ == 0; }

  Q_SIGNALS:
    void became_idle();

  private:
    void one_less();

    QThread thread_;
    QObject on_thread_;
    int given_ = 0;
};

} // namespace desktop
