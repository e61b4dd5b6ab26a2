#include "tests/cli/program.h"

#include <sys/stat.h>

#include <ctime>

namespace {

using Json = nlohmann::json;
using zvtest::Outcome;
using zvtest::ProgramTest;

namespace fs = std::filesystem;

class RemindProgramTest : public ProgramTest {
  protected:
    RemindProgramTest() {
        const fs::path services = home() / "services";
        fs::create_directory(services);
        answer_with({});
        put(home() / "session.conf",
            "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><servicedir>" +
                services.string() +
                "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                "</policy></busconfig>");
    }

    // What the desktop's user does with what is shown.
    void answer_with(const std::string& action) const {
        put(home() / "services/notifications.service",
            "[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=" NOTIFICATION_SERVICE " " +
                shown().string() + (action.empty() ? "" : " " + action) + "\n");
    }
    // The program as it is installed, in a folder where there can be a window's program beside it.
    void install_in_home() const {
        const fs::path built = fs::path(ZVRENEW).parent_path();
        fs::create_directories(home() / "bin");
        fs::copy_file(ZVRENEW, home() / "bin/zvrenew");
        fs::create_directory_symlink(built.parent_path() / "lib", home() / "lib");
    }
    // Reminds in a desktop session of its own; what it showed is in the notifications.
    Outcome remind(const std::string& arguments = {}) {
        fs::remove(shown());
        return shell("dbus-run-session --config-file " + (home() / "session.conf").string() + " -- " +
                     command("remind " + arguments));
    }
    // The same with the program that is installed in the home.
    Outcome remind_installed(const std::string& arguments = "--open") {
        fs::remove(shown());
        std::string line = command("remind " + arguments);
        line.replace(line.find(ZVRENEW), std::string(ZVRENEW).size(), (home() / "bin/zvrenew").string());
        return shell("timeout 60 dbus-run-session --config-file " + (home() / "session.conf").string() +
                     " -- " + line);
    }
    [[nodiscard]] std::string notifications() const {
        return fs::exists(shown()) ? simcard::read_file(shown()) : std::string();
    }
    // The one card's entry.
    [[nodiscard]] fs::path entry() const {
        const fs::path folder = home() / ".local/state/zvrenew";
        return fs::exists(folder) ? fs::directory_iterator(folder)->path() : fs::path();
    }
    // Its serial number.
    [[nodiscard]] std::string card() const {
        return Json::parse(simcard::read_file(entry()))["card"].get<std::string>();
    }
    // Some days pass between the last reminder and the next.
    void let_pass(int days) const {
        Json all = Json::parse(simcard::read_file(entry()));
        for (Json& one : all["certificates"])
            if (one["told_at"] != 0) one["told_at"] = one["told_at"].get<long>() - days * 24L * 60 * 60;
        put(entry(), all.dump());
    }
    static void put(const fs::path& path, const std::string& text) {
        simcard::write_file(path, text, simcard::Access::owner_only);
    }
    // A program of that name is found before the system's.
    void stand_in(const std::string& name, const std::string& script) const {
        fs::create_directories(home() / "bin");
        put(home() / "bin" / name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(home() / "bin" / name, fs::perms::owner_all);
    }
    Outcome with_stand_ins(const std::string& arguments) {
        return shell("PATH=" + (home() / "bin").string() + ":$PATH " + command(arguments));
    }
    [[nodiscard]] fs::path shown() const { return home() / "shown"; }
    [[nodiscard]] fs::path autostart() const { return home() / ".config/autostart/zvrenew-remind.desktop"; }
};

TEST_F(RemindProgramTest, TellsOfACertificateOnceAWeekUntilItIsReplaced) {
    EXPECT_EQ(remind().code, 0) << "nothing is known yet";
    make_card(12);
    EXPECT_EQ(zvrenew("status").code, 10);
    ASSERT_EQ(tool("eject card").code, 0);
    const Outcome first = remind();
    EXPECT_EQ(first.code, 0) << first.err;
    EXPECT_NE(notifications().find("zvRenew: A certificate on your card ends on "), std::string::npos)
        << notifications();
    EXPECT_NE(notifications().find("The signature certificate DS0 on the card "), std::string::npos)
        << notifications();
    EXPECT_TRUE(first.says("zvrenew renew signature --from CERTIFICATE")) << first.out;
    EXPECT_FALSE(first.says("AUTHCertificate0")) << "not due";
    let_pass(6);
    const Outcome again = remind("--json");
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(notifications(), "");
    EXPECT_TRUE(Json::parse(again.out)["reminders"].empty());
    EXPECT_TRUE(remind("--days 5000").says("zvrenew renew authentication --days 5000 --from CERTIFICATE"));
    let_pass(1);
    EXPECT_EQ(Json::parse(remind("--json").out)["reminders"][0]["id"], "DS0");
    EXPECT_NE(notifications(), "");

    let_pass(8);
    ASSERT_EQ(tool("insert card").code, 0);
    ASSERT_EQ(with_pin("renew signature --from CERTIFICATE").code, 12) << "as advised";
    EXPECT_TRUE(remind().says("is under way: when the authority's certificate comes"));
    let_pass(8);
    ASSERT_EQ(tool("issue request-signature.b64 --out CERTIFICATE").code, 0);
    ASSERT_EQ(with_pin("install CERTIFICATE").code, 0) << "as advised";
    EXPECT_EQ(remind().code, 0);
    EXPECT_EQ(notifications(), "");
}

TEST_F(RemindProgramTest, OpensTheWindowAtTheCardWhereThereIsOneAndItIsWanted) {
    make_card(12);
    ASSERT_EQ(zvrenew("status").code, 10);
    install_in_home();
    answer_with("default");
    const Outcome alone = remind_installed();
    ASSERT_EQ(alone.code, 0) << alone.err;
    EXPECT_EQ(notifications().find('['), std::string::npos) << "no window: " << notifications();

    const fs::path opened = home() / "opened";
    ASSERT_EQ(::mkfifo(opened.c_str(), S_IRUSR | S_IWUSR), 0);
    const std::string session = "$(($(ps -o sid= -p $$) == $$))";
    stand_in("zvrenew-desktop", "echo \"$* " + session + "\" >" + opened.string());
    for (const char* action : {"default", "open"}) {
        let_pass(8);
        answer_with(action);
        const Outcome told = remind_installed();
        EXPECT_EQ(told.code, 0) << told.err;
        EXPECT_TRUE(told.says("zvrenew renew signature")) << told.out;
        EXPECT_NE(notifications().find("choose \"Renew the signature certificate\""), std::string::npos)
            << notifications();
        EXPECT_EQ(notifications().find("zvrenew renew"), std::string::npos) << notifications();
        EXPECT_NE(notifications().find("[default: Open]\n[open: Open]\n"), std::string::npos);
        EXPECT_EQ(shell("timeout 60 cat " + opened.string()).out, "--card " + card() + " 1\n")
            << "it stays in a session of its own";
    }
    stand_in("zvrenew-desktop", "touch " + (home() / "unwanted").string());
    let_pass(8);
    EXPECT_EQ(remind_installed({}).code, 0);
    EXPECT_EQ(notifications().find('['), std::string::npos)
        << "nobody waits for an answer: " << notifications();
    EXPECT_NE(notifications().find("zvrenew renew signature"), std::string::npos) << notifications();
    EXPECT_FALSE(fs::exists(home() / "unwanted"));
    let_pass(8);
    answer_with({});
    EXPECT_EQ(remind_installed().code, 0) << "closed, nothing waits any longer";
    EXPECT_FALSE(fs::exists(home() / "unwanted"));
}

TEST_F(RemindProgramTest, RemembersNoReminderThatNobodySaw) {
    make_card(-3);
    EXPECT_EQ(zvrenew("status").code, 11);
    const Outcome alone =
        shell("env -u DBUS_SESSION_BUS_ADDRESS -u DISPLAY XDG_RUNTIME_DIR=" + home().string() + " " +
              command("remind"));
    EXPECT_EQ(alone.code, 1);
    EXPECT_TRUE(alone.says("The desktop cannot show a reminder")) << alone.err;
    fs::remove(home() / "services/notifications.service");
    EXPECT_EQ(remind().code, 1) << "nothing there shows notifications";
    EXPECT_EQ(Json::parse(simcard::read_file(entry()))["certificates"][0]["told_at"], 0);
}

TEST_F(RemindProgramTest, SaysOfAnEndedCertificateThatItSignsNoMore) {
    make_card(-3);
    EXPECT_EQ(with_pin("list").code, 0) << "which remembers, too";
    EXPECT_EQ(remind().code, 0);
    EXPECT_NE(notifications().find("has ended"), std::string::npos) << notifications();
    EXPECT_NE(notifications().find("no longer sign the request for its successor"), std::string::npos);
}

TEST_F(RemindProgramTest, IsTurnedOnWhereSystemdRunsAndWhereItDoesNot) {
    stand_in("systemctl", "exit 1");
    const Outcome on = with_stand_ins("remind --enable");
    EXPECT_EQ(on.code, 0) << on.err;
    EXPECT_TRUE(on.says("zvrenew status")) << "no card was seen yet: " << on.out;
    EXPECT_EQ(shell("$(sed -n 's/^Exec=//p' " + autostart().string() + " | tr -d '\"') --help").code, 0);
    EXPECT_EQ(Json::parse(with_stand_ins("remind --enable --json").out)["reminders_by"], "autostart");

    stand_in("systemctl", "echo \"$*\" >>" + (home() / "asked").string());
    EXPECT_EQ(Json::parse(with_stand_ins("remind --enable --json").out)["reminders_by"], "systemd");
    EXPECT_FALSE(fs::exists(autostart())) << "once is enough";
    EXPECT_EQ(with_stand_ins("remind --disable").code, 0);
    EXPECT_NE(simcard::read_file(home() / "asked").find("--user --quiet enable --now zvrenew-remind.timer\n"),
              std::string::npos);
    stand_in("systemctl", "case $* in *disable*) exit 1 ;; esac");
    EXPECT_EQ(with_stand_ins("remind --disable").code, 1) << "it is on still";
    EXPECT_EQ(zvrenew("remind --enable --disable").code, 2);
}

TEST_F(RemindProgramTest, StatusKnowsAServicesCardsRequestFromTheJournal) {
    make_card(12, "cns");
    ASSERT_EQ(with_pin("request services --out s").code, 0);
    const Outcome services = zvrenew("status");
    EXPECT_EQ(services.code, 12);
    EXPECT_TRUE(services.says("by this computer's journal")) << services.out;
    EXPECT_TRUE(services.says("zvrenew install CERTIFICATE --remove-old")) << services.out;
    EXPECT_FALSE(services.says("is due. Renew it")) << services.out;
    const Json all = Json::parse(zvrenew("status --json").out);
    EXPECT_TRUE(all["services_pending"].is_null()) << "the card does not show it";
    EXPECT_EQ(all["journal"]["services_pending"], true);
    ASSERT_EQ(tool("issue s --out c").code, 0);
    const std::string before = simcard::read_file(entry());
    ASSERT_EQ(with_pin("install c --remove-old").code, 0) << "as advised";
    EXPECT_EQ(zvrenew("status").code, 0);
    put(entry(), before);
    EXPECT_EQ(zvrenew("status").code, 0)
        << "on another computer: another certificate than the request's is there";
}

TEST_F(RemindProgramTest, AJournalThatCannotBeWrittenStopsNothing) {
    make_card(12);
    fs::create_directories(home() / ".local");
    put(home() / ".local/state", "");
    const Outcome status = zvrenew("status");
    EXPECT_EQ(status.code, 10);
    EXPECT_TRUE(status.says("journal")) << status.err;
    EXPECT_EQ(with_pin("request signature --out s").code, 0);
    fs::remove(home() / ".local/state");
    ASSERT_EQ(zvrenew("status").code, 12);
    put(entry(), R"({"zvrenew_journal": 2})");
    EXPECT_TRUE(zvrenew("status").says("a later version"));
    EXPECT_EQ(simcard::read_file(entry()), R"({"zvrenew_journal": 2})");
}

} // namespace
