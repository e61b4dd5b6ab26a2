#include "desktop/card_worker.h"

#include <utility>

namespace desktop {

CardWorker::CardWorker() {
    on_thread_.moveToThread(&thread_);
    thread_.start();
}

CardWorker::~CardWorker() {
    thread_.quit();
    thread_.wait();
}

void CardWorker::start(std::function<void()> work) {
    ++given_;
    QMetaObject::invokeMethod(
        &on_thread_,
        [this, work = std::move(work)] {
            work();
            tell([this] { one_less(); });
        },
        Qt::QueuedConnection);
}

void CardWorker::tell(std::function<void()> what) {
    QMetaObject::invokeMethod(this, std::move(what), Qt::QueuedConnection);
}

void CardWorker::one_less() {
    if (--given_ == 0) Q_EMIT became_idle();
}

} // namespace desktop
