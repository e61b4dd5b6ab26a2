#include "tests/desktop/window_fixture.h"

namespace {

using zvtest::WindowTest;

TEST_F(WindowTest, RenewsASignatureCertificate) {
    make_card();
    open();
    wait_until([&] { return says("DUE, 11 days left") || says("DUE, 12 days left"); });
    picture("start-due");
    press("window-renew-signature");
    wait_for_page("consent-page");
    EXPECT_EQ(module_.calls("C_Login"), 0U);
    picture("consent-request");
    type_pin();
    press("window-go-on");
    wait_for_page("request-page");
    picture("request");
    drop(answer());
    wait_for_page("consent-page");
    picture("consent-install");
    type_pin();
    press("window-go-on");
    wait_for_page("done-page");
    EXPECT_TRUE(says("Signed and verified with the new certificate.")) << told();
    picture("done");
    press("window-finish");
    wait_for_page("start-page");
}

TEST_F(WindowTest, RenewsAServicesCard) {
    make_card(12, "cns");
    open();
    press("window-renew-services");
    wait_for_page("consent-page");
    type_pin();
    press("window-go-on");
    wait_for_page("request-page");
    drop(answer());
    wait_for_page("consent-page");
    press("window-remove-old");
    type_pin();
    press("window-go-on");
    wait_for_page("done-page");
}

TEST_F(WindowTest, SpendsOneTryForAWrongPin) {
    make_card();
    open();
    press("window-renew-signature");
    wait_for_page("consent-page");
    type_pin("99999999");
    press("window-go-on");
    wait_for_page("problem-page");
    EXPECT_EQ(module_.calls("C_Login"), 1U);
    picture("problem-pin");
    EXPECT_TRUE(says("The PIN is wrong")) << told();
    press("remedy");
    wait_for_page("consent-page");
    EXPECT_TRUE(says("fewer tries are left than usual")) << told();
    type_pin("99999998");
    press("window-go-on");
    wait_for_page("problem-page");
    press("remedy");
    wait_for_page("consent-page");
    picture("consent-last-try");
    type_pin();
    EXPECT_FALSE(part<QAbstractButton>("window-go-on")->isEnabled()) << "the last try wants a tick";
    press("window-final-try");
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
}

} // namespace
