#pragma once

#include "host/card_list.h"

#include <QVBoxLayout>
#include <QWidget>
#include <ctime>
#include <vector>

namespace desktop {

// The certificates of a card, each as a bar from its start to its end on one scale of time, with today as a line.
class Timeline : public QWidget {
    Q_OBJECT

  public:
    Timeline();
    void show_certificates(const std::vector<zvhost::ListedCertificate>& certificates, std::time_t now);

  private:
    QVBoxLayout* rows_;
};

} // namespace desktop
