#pragma once

#include "host/card_list.h"

#include <QWidget>
#include <ctime>

namespace desktop {

// How it stands with a certificate's time; each has a word and a colour.
enum class Standing { valid, due, ended, replaced };
[[nodiscard]] Standing standing_of(const zvhost::ListedCertificate& listed);

// A span of time.
struct Span {
    std::time_t begins = 0;
    std::time_t ends = 0;
};

// A certificate's time, drawn. What it shows stands beside it in words, too.
class CertificateBar : public QWidget {
    Q_OBJECT

  public:
    // @param whole  what the bar's width stands for
    CertificateBar(const zvhost::ListedCertificate& listed, Span whole, std::time_t now);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] double place_of(std::time_t time) const;

    Span own_;
    Span whole_;
    std::time_t now_;
    Standing standing_;
};

} // namespace desktop
