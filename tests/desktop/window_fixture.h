#pragma once

#include "desktop/window.h"
#include "host/log_folder.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/module.h"
#include "words/language.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <memory>

namespace zvtest {

namespace fs = std::filesystem;

// The window with a home, a folder and simulated cards of the test's own. What a test sees is what the accessibility
// tree tells a screen reader; what it does is done with keys and clicks.
class WindowTest : public testing::Test {
  protected:
    WindowTest() {
        ::setenv("XDG_STATE_HOME", (folder_.path() / "state").c_str(), 1);
        ::setenv("ZVSIMCARD_KEYS", ZV_TEST_KEYS, 1);
        zvhost::log_to((folder_.path() / "log").string());
        fs::create_directory(folder());
        speak(words::LANGUAGES.front());
        QDir::setCurrent(QString::fromStdString(folder().string()));
        module_.reset();
        module_.record(true);
    }
    ~WindowTest() override { QDir::setCurrent(QStringLiteral("/")); }

    // A card whose signature certificate, or a services card's own, ends in so many days.
    void make_card(int days = 12, const char* profile = "signature") {
        cards_.make({.profile = &simcard::profile_named(profile), .signature_days = days, .cns_days = days});
        cards_.configure();
    }
    // Opens the window; where one is open, that ends first.
    void open(const std::string& card = {}) {
        window_.reset();
        window_ = std::make_unique<desktop::Window>(zvhost::CardChoice{}, card);
        window_->resize(720, 560);
        window_->show();
        (void)QTest::qWaitForWindowExposed(window_.get());
        QApplication::setActiveWindow(window_.get());
        wait_for_page("start-page");
        wait_until([&] { return !says(told_in("window-looking-heading")); });
    }

    [[nodiscard]] desktop::Page& page() const {
        return *static_cast<desktop::Page*>(window_->findChild<QStackedWidget*>()->currentWidget());
    }
    void wait_until(const std::function<bool()>& holds) const {
        EXPECT_TRUE(QTest::qWaitFor(holds, 8000)) << "the page says:\n" << told();
    }
    void wait_for_page(const char* name) const {
        wait_until([&] { return page().objectName() == QLatin1String(name); });
        ASSERT_EQ(page().objectName().toStdString(), name);
    }
    template <class Widget = QWidget> [[nodiscard]] Widget* part(const char* name) const {
        for (auto* const found : page().findChildren<Widget*>(QString::fromLatin1(name)))
            if (found->isVisible()) return found;
        return nullptr;
    }
    void press(const char* name) const {
        wait_until([&] { return part<QAbstractButton>(name) != nullptr; });
        auto* const button = part<QAbstractButton>(name);
        ASSERT_NE(button, nullptr) << name;
        ASSERT_TRUE(button->isEnabled()) << name;
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Space);
    }
    void type_pin(const char* pin = simcard::DEFAULT_PIN) const {
        ASSERT_NE(part("window-pin"), nullptr);
        QTest::keyClicks(part("window-pin"), QString::fromLatin1(pin));
    }
    // Drops a file on the window.
    void drop(const std::string& file) const {
        QMimeData carried;
        carried.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
        QDragEnterEvent enters({10, 10}, Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &enters);
        if (!enters.isAccepted()) return;
        QDropEvent drops({10, 10}, Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_.get(), &drops);
    }
    void give_pin() const {
        type_pin();
        press("window-go-on");
    }
    // Opens the window at a card and goes to where its PIN is asked for.
    void ask_for_pin(const char* kind = "signature") {
        make_card(12, kind == std::string_view("services") ? "cns" : "signature");
        open();
        press((std::string("window-renew-") + kind).c_str());
        wait_for_page("consent-page");
    }
    // And on to where the request is.
    void make_request() {
        ask_for_pin();
        give_pin();
        wait_for_page("request-page");
    }
    static void speak(const char* language) { words::speak(language, CATALOGUES); }
    static std::string told_in(const char* id) { return words::of(zvhost::Sentence(id, {})); }
    // The card's certificates, those of authorities excepted.
    [[nodiscard]] std::string certificates() const {
        zvhost::CardChoice choice;
        std::vector<std::string> ids;
        for (const auto& one : zvhost::look_at_card(choice, 90).list.certificates)
            ids.push_back(one.record.id);
        std::sort(ids.begin(), ids.end());
        std::string text;
        for (const std::string& id : ids)
            text += (text.empty() ? "" : " ") + id;
        return text;
    }
    // What a screen reader finds on the page, a line each.
    [[nodiscard]] std::string told() const {
        std::string text;
        add_told(QAccessible::queryAccessibleInterface(&page()), text);
        return text;
    }
    [[nodiscard]] bool says(const std::string& text) const { return told().find(text) != std::string::npos; }
    // Keeps a picture of the window.
    void picture(const std::string& name) const {
        fs::create_directories(SCREENSHOTS);
        QTest::qWait(1); // texts have found their room
        EXPECT_TRUE(window_->grab().save(
            QString::fromStdString(SCREENSHOTS "/" + name + "-" + words::spoken_language() + ".png")));
    }
    // "eject card", "insert card"
    static void tool(const std::string& arguments) { shell(ZVSIMCARD_TOOL " " + arguments); }
    static void shell(const std::string& command) {
        EXPECT_EQ(std::system((command + " >/dev/null 2>&1").c_str()), 0) << command;
    }
    // The authority's answer to the request that is on the page.
    std::string answer(const std::string& options = {}) const {
        const std::string certificate = (folder() / "certificate.pem").string();
        for (const auto& one : fs::directory_iterator(folder()))
            if (one.path().extension() == ".b64")
                tool("issue " + one.path().string() + " --out " + certificate + " " + options);
        return certificate;
    }

    [[nodiscard]] fs::path folder() const { return folder_.path() / "files"; }

  private:
    static void add_told(QAccessibleInterface* from, std::string& text) {
        if (from == nullptr || from->state().invisible) return;
        for (const QAccessible::Text which :
             {QAccessible::Name, QAccessible::Description, QAccessible::Value})
            if (const QString one = from->text(which); !one.isEmpty()) text += one.toStdString() + "\n";
        for (int i = 0; i < from->childCount(); ++i)
            add_told(from->child(i), text);
    }

    simcard::TemporaryFolder folder_{fs::temp_directory_path() / "zvwindow-test"};

  protected:
    simcard::TestCards cards_;
    Module module_;
    std::unique_ptr<desktop::Window> window_;
};

} // namespace zvtest
