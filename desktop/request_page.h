#pragma once

#include "desktop/file_handle.h"
#include "desktop/page.h"
#include "host/kind.h"

#include <string>

namespace desktop {

// The request is made: it goes to the authority, whose certificate is waited for.
class RequestPage : public Page {
    Q_OBJECT

  public:
    RequestPage();

    // @param request  its file; empty where nobody knows it any more
    void show_waiting(zvhost::Kind kind, const std::string& request);

    // Says something on it.
    void say(const char* id);

  Q_SIGNALS:
    // The authority's certificate has come, in that file.
    void certificate_given(const QString& file);
    // There is no request, or it was lost: it is made once more, for the same keys.
    void request_wanted();
    void left();

  private:
    void save_request();
    void copy_request();
    void choose_certificate();
    void paste_certificate();

    std::string request_;
    QLabel* told_;
    FileHandle* handle_; // to drag the request by
    QPushButton* save_;
    QPushButton* copy_;
    QPushButton* again_;
    QLabel* result_; // of saving and copying
};

} // namespace desktop
