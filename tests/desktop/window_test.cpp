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
}

} // namespace
