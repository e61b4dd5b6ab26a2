// Calls that are stopped before the card is touched.
#include "api/state.h"
#include "card/detection.h"
#include "routines/api.h"
#include "routines/card.h"
#include "store/renewal_state.h"
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;

class Guards : public PendingFlow {
  protected:
    void expect_stopped(int result, const std::string& reason, int code = ZV_NOT_SENT) {
        EXPECT_EQ(result, code) << reason;
        EXPECT_STREQ(szBuffErr, "Errore nella mininfo");
        EXPECT_TRUE(has(log.text(), "[]: Operazione non inviata: " + reason)) << log.text();
        EXPECT_TRUE(has(log.text(), "[]: Errore nella mininfo\n[]: Funzione miExecCmd() error!\n"));
        EXPECT_EQ(module.calls(), 0u) << reason;
        EXPECT_EQ(objects(), before);
        EXPECT_FALSE(has(zv::szBufferRichiesta, PIN));
        log.clear();
    }
};

TEST_F(Guards, NamedPair) {
    const std::string missing = "manca l'identificativo";
    expect_stopped(request(""), missing);
    expect_stopped(request("  "), missing);
    expect_stopped(save(certificate, true, "DS0", ""), missing);
    const std::string in_use = "l'identificativo pending e' contenuto in quello della chiave in uso";
    expect_stopped(request("DS0"), in_use);
    expect_stopped(request("DS"), in_use);
    expect_stopped(save(certificate, true, "DS0", "DS"), "l'identificativo pending e' parte");
}

TEST_F(Guards, OwnTargetAndOwnKey) {
    expect_stopped(save(certificate, false, "DS"), "la nuova coppia di chiavi verrebbe cancellata");
    expect_stopped(save(certificate, false, "DS3"), "la nuova coppia di chiavi verrebbe cancellata");
    const std::string own = "la coppia di chiavi propria della carta CNS verrebbe cancellata";
    expect_stopped(save(certificate, false, "NS"), own);
    expect_stopped(request("CNS0", "DS0", true), own);
    std::string pin = PIN, key = "CNS0";
    std::vector<char> out(ZV_REQUEST_SIZE);
    expect_stopped(
        rinnovo_Card_createCertRequestAUT(out.data(), "CNS0", pin.data(), key.data(), "2.5.4.6=IT", true),
        own);
    expect_stopped(
        rinnovo_Card_createCertRequestAUT(out.data(), "", pin.data(), key.data(), "2.5.4.6=IT", true),
        "manca l'identificativo");
}

TEST_F(Guards, WholeSubject) {
    const std::string none = "il nome del titolare non ha alcun attributo noto";
    for (const char* name : {"/CN=Ada", "", "2.5.4.6= "}) {
        subject = name;
        expect_stopped(request("slot:DS4"), none);
    }
    expect_stopped(request(""), "manca l'identificativo");
    const std::string filled = "2.5.4.3=A2.5.4.13=" + std::string(1000, 'd');
    for (const char* last : {"2.5.4.6=IT", "/serialNumber=1", "2.5.4.3=B"}) {
        subject = filled + last;
        expect_stopped(request("DS4"), "il nome del titolare e' troppo lungo: un attributo andrebbe perso");
    }
    subject = filled;
    EXPECT_EQ(request("DS4"), 0) << "a value is cut to its width";
    subject = "/X=12.5.4.99=22.5.4.3=A2.5.4.11=12.5.4.11=22.5.4.11=32.5.4.11=42.5.4.11=52.5.4.11=6";
    EXPECT_EQ(request("DS4"), 0) << "what requests do not carry may stand beside";
}

TEST_F(Guards, ReadableCertificateComesBeforeTheBlock) {
    expect_stopped(save("junk", false), "il certificato non e' leggibile: ", ZV_FAILED);
    expect_stopped(save(std::string(9000, 'A'), false), "il testo del certificato e' troppo lungo",
                   ZV_FAILED);
    expect_stopped(save("junk\nnot", false, "DS"), "la nuova coppia");
}

TEST_F(Guards, FaithfulBlock) {
    const std::string unfaithful = "il blocco di comando non riporta i dati ricevuti";
    expect_stopped(request("DS4", "DS0", false, "12345678 "), unfaithful);
    expect_stopped(request("DS4", "DS0", false, std::string(32, '1')), unfaithful);
    expect_stopped(request("DS4", "DS0", false, "1\nslot:3"), unfaithful);
    expect_stopped(request("DS4", "DS0\nszpin:0000"), unfaithful);
    expect_stopped(request("slot:DS4"), unfaithful);
    expect_stopped(request(std::string(256, 'D')), unfaithful);
    expect_stopped(save(certificate + std::string(7000, ' '), true), unfaithful);
    expect_stopped(save("END_STRING", true), unfaithful);
    subject = "2.5.4.3=slot:1";
    expect_stopped(request("DS4"), unfaithful);
    subject = "2.5.4.6=IT2.5.4.3=A";
    zv::slot = 10;
    expect_stopped(request("DS4"), unfaithful);
    zv::slot = 0;
    EXPECT_EQ(tries_left(), 3);
    EXPECT_EQ(request("DS4 "), 0) << "trailing blanks of a label do not matter";
}

// What the dispatcher stops fails as a deletion that did not come about.
class Discarding : public PendingFlow {
  protected:
    void expect_kept(int result, const std::string& reason) {
        EXPECT_EQ(result, 1) << reason;
        EXPECT_TRUE(has(log.text(), "[]: Operazione non inviata: " + reason)) << log.text();
        EXPECT_TRUE(has(log.text(), "Cancellazione Oggetti\nErrore = 0x1\n")) << reason;
        EXPECT_EQ(module.calls("C_DestroyObject") + module.calls("C_GenerateKeyPair"), 0u) << reason;
        EXPECT_EQ(objects(), before);
        module.reset(), log.clear();
    }
};

TEST_F(Discarding, LeavesACertifiedPair) {
    expect_kept(request("AUTHCertificate0", "DS0", true),
                "la coppia di chiavi da scartare ha un certificato");
    for (const char* rule : {"Init:2:answer:0x30", ":11:answer:0xFFFFFFFFFFFFFFFF", "Final:2:answer:0x30"}) {
        module.add_rules(std::string("C_FindObjects") + rule);
        expect_kept(request("DS3", "DS0", true), "la ricerca del certificato");
    }
}

TEST_F(Discarding, AndRetryingStayOnTheCard) {
    CK_FUNCTION_LIST& list = *module.list();
    static CK_C_OpenSession open;
    open = list.C_OpenSession;
    list.C_OpenSession = [](CK_SLOT_ID slot, CK_FLAGS flags, void* data, CK_NOTIFY notify,
                            CK_SESSION_HANDLE_PTR session) {
        return open(slot == 8 ? 0 : slot, flags, data, notify, session);
    };
    const std::string reason = "il nuovo login non raggiungerebbe la stessa carta";
    zv::slot = 8;
    expect_kept(request("DS3", "DS0", true), reason);
    zv::slot = 0;
    list.C_GetSlotList = [](CK_BBOOL, CK_SLOT_ID_PTR slots, CK_ULONG_PTR count) {
        if (slots != nullptr) slots[0] = 5, slots[1] = 0;
        *count = 2;
        return CK_RV{CKR_OK};
    };
    expect_kept(request("DS3", "DS0", true), reason);
    for (const char* refused : {"C_Sign", "C_GenerateKeyPair"}) {
        module.add_rules(refused + std::string(":1:answer:0x101"));
        EXPECT_EQ(request(refused[2] == 'S' ? "DS3" : "DS4"), 1);
        EXPECT_TRUE(has(log.text(), reason + "\n** ")) << log.text();
        EXPECT_TRUE(has(log.text(), "Errore nella ricerca slots (")) << refused;
        EXPECT_EQ(module.calls("C_OpenSession"), 1u) << refused;
        EXPECT_EQ(zv::vettoreSlotID[0], 0u);
        module.reset(), log.clear();
    }
    EXPECT_EQ(objects(), before);
    EXPECT_EQ(request("DS4", "DS0", true), 0) << "nothing to discard";
    std::string pin = PIN, library = path();
    EXPECT_EQ(inizializza(library.data(), pin.data(), 0, nullptr, CKU_USER), 1);
    EXPECT_EQ(zv::vettoreSlotID[0], 5u) << "a host's own login goes where it went";
    EXPECT_FALSE(has(log.text(), reason));
}

// Without a name and a certificate no command comes to an end, whatever else is there.
TEST_F(Flow, ACommandBlockThatEndsAnywhereIsRefusedAndLeavesNothingOpen) {
    ASSERT_EQ(read().result, 0);
    std::string label = "DS0", pending = "DS3";
    ResettaDN(), zv::dName = {};
    RichiestaMinInfo(label.data(), PIN, "none", pending.data(), "PRA", "R");
    const std::string whole = zv::szBufferRichiesta;
    for (std::size_t size = 0; size < whole.size(); size += 11) {
        std::string block = whole.substr(0, size);
        char out[8000];
        long room = sizeof out;
        EXPECT_NE(miExecCmd(size % 2 == 0 ? "REQREN" : "REQSCA", block.data(), 0, out, &room), 0) << block;
        EXPECT_EQ(zv::hSession, 0u) << block;
    }
}

} // namespace
