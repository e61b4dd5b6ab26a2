#include "simcard/common/card_folder.h"
#include "tests/desktop/window_fixture.h"

#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>

namespace {

namespace fs = std::filesystem;
using zvtest::WindowTest;

class WindowLanguageTest : public WindowTest, public testing::WithParamInterface<const char*> {};

TEST_P(WindowLanguageTest, RenewsASignatureCertificate) {
    speak(GetParam());
    make_card();
    open();
    wait_until([&] { return part("certificate") != nullptr; });
    picture("start");
    press("window-renew-signature");
    wait_for_page("consent-page");
    EXPECT_EQ(module_.calls("C_Login"), 0U) << "before the PIN";
    picture("consent-request");
    type_pin("99999999");
    press("window-go-on");
    wait_for_page("problem-page");
    picture("problem");
    press("remedy");
    wait_for_page("consent-page");
    module_.add_rules("C_GenerateKeyPair:1:delay:300000");
    give_pin();
    wait_until(
        [&] { return page().findChild<QLabel*>(QStringLiteral("step"))->text().contains(QLatin1Char('3')); });
    picture("work");
    wait_for_page("request-page");
    picture("request");
    open();
    wait_until([&] { return part("waits") != nullptr; });
    picture("start-waits");
    press("window-take-certificate-signature");
    wait_for_page("request-page");
    drop(answer());
    wait_for_page("consent-page");
    press("window-remove-old");
    picture("consent-install");
    give_pin();
    wait_for_page("done-page");
    EXPECT_TRUE(says(told_in("window-proved"))) << told();
    EXPECT_TRUE(says(folder().string() + "/DS0-")) << "where the copy is:\n" << told();
    EXPECT_EQ(certificates(), "AUTHCertificate0 DS3");
    picture("done");
    press("window-finish");
    wait_for_page("start-page");
    EXPECT_TRUE(says(told_in("window-nothing-due"))) << "the card as it is now: " << told();
}

INSTANTIATE_TEST_SUITE_P(All, WindowLanguageTest, testing::ValuesIn(words::LANGUAGES));

TEST_F(WindowTest, RenewsAServicesCard) {
    ask_for_pin("services");
    EXPECT_FALSE(says("keys are made")) << told();
    give_pin();
    wait_for_page("request-page");
    drop(answer());
    wait_for_page("consent-page");
    press("window-remove-old");
    give_pin();
    wait_for_page("done-page");
    EXPECT_TRUE(says("Signed and verified")) << told();
    press("window-finish");
    wait_until([&] { return says("services certificate of CLLDAA80A41Z999U, from"); });
}

TEST_F(WindowTest, SpendsOneTryForAWrongPinAndNoneForALockedOne) {
    ask_for_pin();
    for (const char* wrong : {"99999999", "99999998", "99999997"}) {
        const unsigned long logins = module_.calls("C_Login");
        wait_for_page("consent-page");
        type_pin(wrong);
        if (part("window-final-try") != nullptr) {
            picture("consent-last-try");
            EXPECT_FALSE(part("window-go-on")->isEnabled()) << "the last try wants a tick";
            press("window-final-try");
        }
        press("window-go-on");
        wait_for_page("problem-page");
        EXPECT_EQ(module_.calls("C_Login"), logins + 1);
        EXPECT_TRUE(says("The PIN is wrong")) << told();
        picture("problem-pin");
        press("remedy");
    }
    wait_for_page("consent-page");
    EXPECT_TRUE(says("Unlock it with the card's PUK")) << told();
    picture("consent-locked");
    EXPECT_FALSE(part("window-pin")->isEnabled());
    EXPECT_FALSE(part("window-go-on")->isEnabled());
}

TEST_F(WindowTest, GivesAPinToNoOtherCard) {
    const std::string other = cards_.make({.name = "other", .pin = "87654321"}).serial;
    tool("eject other");
    ask_for_pin();
    type_pin();
    tool("eject card");
    tool("insert other");  // into the same reader
    press("window-go-on"); // before the window sees what has changed
    wait_for_page("problem-page");
    EXPECT_TRUE(says("Another card is in the reader")) << told();
    picture("problem-other-card");
    EXPECT_EQ(module_.calls("C_Login"), 0U);
    EXPECT_EQ(simcard::load_card(cards_.path() / "other").pin_tries_left, 3U);
    press("remedy");
    wait_for_page("start-page");
    EXPECT_TRUE(says(other)) << told();
}

TEST_F(WindowTest, ShowsACardWithoutASerialNumberOnceARunHasEnded) {
    make_card();
    simcard::update_card(cards_.path() / "card", [](simcard::Card& card) { card.serial.clear(); });
    open();
    press("window-renew-signature");
    wait_for_page("consent-page");
    type_pin("99999999");
    press("window-go-on");
    wait_for_page("problem-page");
    press("window-to-start");
    wait_until([&] {
        return page().objectName() != QLatin1String("problem-page") &&
               !says(told_in("window-looking-heading"));
    });
    EXPECT_EQ(page().objectName().toStdString(), "start-page") << told();
}

TEST_F(WindowTest, KeepsThePinToItself) {
    ask_for_pin();
    auto* const field = part<QLineEdit>("window-pin");
    QGuiApplication::clipboard()->setText(QStringLiteral("87654321"));
    QTest::keySequence(field, QKeySequence::Paste);
    EXPECT_FALSE(part("window-go-on")->isEnabled()) << "nothing is taken from the clipboard";
    type_pin("12345");
    QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, QStringLiteral("\u00E8"), Qt::NoModifier);
    EXPECT_EQ(field->text().size(), 6);
    EXPECT_FALSE(says("1234"));
    QTest::keySequence(field, QKeySequence::SelectAll);
    QTest::keySequence(field, QKeySequence::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "87654321");
    QTest::keyClick(field, Qt::Key_Backspace);
    EXPECT_TRUE(field->text().isEmpty()) << "all of it was selected";
    QTest::keySequence(field, QKeySequence::Undo);
    EXPECT_TRUE(field->text().isEmpty());
    type_pin("1x");
    QTest::keyClick(field, Qt::Key_Backspace);
    type_pin("2345678");
    press("window-go-on");
    wait_for_page("request-page");
}

TEST_F(WindowTest, FollowsTheCard) {
    make_card();
    tool("eject card");
    open();
    picture("start-no-card");
    EXPECT_TRUE(says("Put your card into the reader")) << told();
    tool("insert card");
    press("window-renew-signature");
    wait_for_page("consent-page");
    type_pin("123");
    tool("eject card");
    wait_for_page("start-page");
    wait_until([&] { return says("Put your card into the reader"); });
    tool("insert card");
    press("window-renew-signature");
    wait_for_page("consent-page");
    EXPECT_TRUE(part<QLineEdit>("window-pin")->text().isEmpty());
    give_pin();
    wait_for_page("request-page");
    tool("eject card");
    drop(answer());
    wait_until([&] { return says("Put the card back that was in the reader before."); });
    tool("insert card");
    wait_for_page("consent-page");
    give_pin();
    wait_for_page("done-page");
}

TEST_F(WindowTest, GoesOnAfterACardThatWasPulledAtWork) {
    ask_for_pin();
    for (const char* rule : {"C_GenerateKeyPair:1:take-out", "C_Sign:1:take-out"}) {
        wait_for_page("consent-page");
        module_.add_rules(rule);
        give_pin();
        wait_for_page("problem-page");
        picture("problem-pulled");
        tool("insert card");
        press("remedy");
    }
    wait_for_page("consent-page");
    EXPECT_TRUE(says("Nothing on the card is changed")) << "the keys that were made are used: " << told();
    give_pin();
    wait_for_page("request-page");
    EXPECT_EQ(module_.calls("C_GenerateKeyPair"), 2U) << "the first was not done";
}

TEST_F(WindowTest, RefusesWhatIsNoAnswer) {
    make_request();
    const auto refused = [&](const std::string& file, const char* reason) {
        drop(file);
        wait_for_page("consent-page");
        give_pin();
        wait_for_page("problem-page");
        EXPECT_TRUE(says(reason)) << told();
        EXPECT_EQ(module_.calls("C_CreateObject"), 0U);
        picture("problem-certificate");
    };
    simcard::write_file(folder() / "text", "no certificate", simcard::Access::owner_only);
    refused((folder() / "text").string(), "text");
    press("remedy");
    wait_for_page("request-page");
    refused(answer("--starts-in -30 --days 10"), "It ended on");
    EXPECT_TRUE(says("Install it all the same")) << told();
    press("remedy");
    wait_for_page("consent-page");
    give_pin();
    wait_for_page("done-page");
}

TEST_F(WindowTest, ClosesOnceTheCardIsLeftAlone) {
    ask_for_pin();
    module_.add_rules("C_GenerateKeyPair:1:delay:700000");
    give_pin();
    wait_until([&] { return says("Step 1 of"); });
    window_->close();
    EXPECT_TRUE(window_->isVisible());
    auto* const question = window_->findChild<QMessageBox*>();
    ASSERT_NE(question, nullptr);
    QTest::mouseMove(window_.get());
    question->button(QMessageBox::Yes)->click();
    EXPECT_TRUE(window_->isVisible()) << "the keys are being made";
    wait_until([&] { return !window_->isVisible(); });
    EXPECT_EQ(module_.rules_left(), 0U);

    open();
    press("window-take-certificate-signature");
    wait_for_page("request-page");
    EXPECT_TRUE(says("Send the request to the authority")) << told();
}

TEST_F(WindowTest, ShowsTheCardThatIsMeantAmongSeveralReaders) {
    cards_.make({.name = "first"});
    const std::string second = cards_.make({.name = "second", .signature_days = 800}).serial;
    cards_.configure();
    open(second);
    auto* const readers = part<QComboBox>("readers");
    ASSERT_NE(readers, nullptr);
    EXPECT_EQ(readers->count(), 2);
    wait_until([&] { return says(second) && says(told_in("window-nothing-due")); });
    picture("start-readers");
    readers->setFocus();
    QTest::keyClick(readers, Qt::Key_Up);
    wait_until([&] { return part("window-renew-signature") != nullptr && !says(second); });
}

TEST_F(WindowTest, LeavesTheKeyboardWhereItWasWhenReadersChange) {
    cards_.make({.name = "first", .signature_days = 12, .authentication_days = 12});
    cards_.configure();
    open();
    int readers = 1;
    for (const char* name : {"window-renew-authentication", "window-help-desk"}) {
        wait_until([&] { return part(name) != nullptr; });
        part(name)->setFocus();
        cards_.make({.name = name});
        cards_.configure();
        ++readers;
        wait_until([&] { return part("readers") && part<QComboBox>("readers")->count() == readers; });
        wait_until([&] { return page().focusWidget() != nullptr; });
        ASSERT_NE(page().focusWidget(), nullptr);
        EXPECT_EQ(page().focusWidget()->objectName().toStdString(), name);
    }
}

TEST_F(WindowTest, LooksAgainAtACardThatCouldNotBeRead) {
    make_card();
    module_.add_rules("C_FindObjectsInit:1:answer:0x30");
    open();
    EXPECT_EQ(module_.rules_left(), 0U);
    wait_until([&] { return part("window-renew-signature") != nullptr; });
    module_.add_rules("C_FindObjectsInit:1:answer:0x30; C_FindObjectsInit:2:answer:0x30");
    open();
    EXPECT_TRUE(says(told_in("window-trouble-heading"))) << told();
    wait_until([&] { return module_.rules_left() == 0; });
    picture("start-trouble");
    wait_until([&] { return page().focusWidget() && page().focusWidget() == part("window-try-again"); });
    press("window-try-again");
    wait_until([&] { return part("window-renew-signature") != nullptr; });
}

TEST_F(WindowTest, HandsTheRequestOverAndTakesAPastedCertificate) {
    make_request();
    press("window-copy-request");
    const std::string copied = QGuiApplication::clipboard()->text().toStdString();
    press("window-save-request");
    auto* const dialog = window_->findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString((folder() / "saved").string()));
    QMetaObject::invokeMethod(dialog, "accept");
    wait_until([&] { return says("Saved: "); });
    EXPECT_EQ(simcard::read_file(folder() / "saved"), copied);
    EXPECT_GT(copied.size(), 1000U);

    QGuiApplication::clipboard()->setText(QString::fromStdString(simcard::read_file(answer())));
    ::setenv("TMPDIR", "/dev/null", 1);
    press("window-paste-certificate");
    wait_until([&] { return says(told_in("window-not-pasted")); });
    ::unsetenv("TMPDIR");
    module_.add_rules("C_FindObjectsInit:1:answer:0x30"); // in the look before the PIN is asked for
    press("window-paste-certificate");
    wait_for_page("problem-page");
    press("remedy");
    wait_for_page("consent-page");
    give_pin();
    wait_for_page("done-page");
}

TEST_F(WindowTest, TellsWhatTheCardWantsBeyondWhatItShowed) {
    make_request();
    for (const auto& one : fs::directory_iterator(folder()))
        fs::remove(one.path());
    press("window-back");
    press("window-take-certificate-signature");
    press("window-request-again");
    wait_for_page("consent-page");
    EXPECT_TRUE(says("Nothing on the card is changed")) << told();
    for (const char* type : {"pubkey", "privkey"})
        shell("pkcs11-tool --module " ZVSIMCARD_MODULE
              " -l --pin 12345678 --delete-object --id 445333 --type " +
              std::string(type));
    give_pin();
    wait_until([&] { return says("Two keys are made"); });
    picture("consent-more");
    EXPECT_EQ(module_.calls("C_GenerateKeyPair"), 1U);
    press("window-go-on");
    wait_for_page("request-page");
    EXPECT_EQ(module_.calls("C_GenerateKeyPair"), 2U);
}

TEST_F(WindowTest, SavesWhatAHelpDeskWantsToSee) {
    make_card();
    open();
    press("window-help-desk");
    auto* const dialog = window_->findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString((folder() / "help").string()));
    QMetaObject::invokeMethod(dialog, "accept");
    wait_until([&] { return window_->findChild<QMessageBox*>() != nullptr; });
    EXPECT_NE(simcard::read_file(folder() / "help").find("zvrenew-desktop"), std::string::npos);
    EXPECT_EQ(module_.calls("C_Login"), 0U);
}

TEST_F(WindowTest, FitsLargeLettersOnDarkGround) {
    const QPalette usual = QApplication::palette();
    const QFont letters = QApplication::font();
    QFont large = letters;
    large.setPointSizeF(letters.pointSizeF() * 2);
    QApplication::setFont(large);
    QApplication::setPalette(QPalette(QColor(0x20, 0x20, 0x20)));
    speak("it"); // whose words are longer
    make_card();
    open();
    wait_until([&] { return part("certificate") != nullptr; });
    const auto fits = [&](const char* name) {
        picture(name);
        EXPECT_EQ(page().findChild<QScrollArea*>()->horizontalScrollBar()->maximum(), 0) << name;
        EXPECT_LE(window_->width(), 1400) << name;
    };
    fits("large-start");
    press("window-renew-signature");
    wait_for_page("consent-page");
    fits("large-consent");
    type_pin("99999999");
    press("window-go-on");
    wait_for_page("problem-page");
    fits("large-problem");
    press("remedy");
    wait_for_page("consent-page");
    give_pin();
    wait_for_page("request-page");
    fits("large-request");
    drop(answer());
    wait_for_page("consent-page");
    press("window-remove-old");
    fits("large-consent-install");
    give_pin();
    wait_for_page("done-page");
    fits("large-done");
    QApplication::setFont(letters);
    QApplication::setPalette(usual);
}

} // namespace
