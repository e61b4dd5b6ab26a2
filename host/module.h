#pragma once

#include "host/pin.h"
#include "host/sentence.h"
#include "pkcs11/module.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zvhost {

using Bytes = std::vector<unsigned char>;

// A PKCS#11 module, initialised as long as this object lives. The library does the same on its own within each
// of its calls, so none of these may live across one. What is loaded stays mapped until the program ends: there
// are modules that crash when a process loads them a second time.
class Module {
  public:
    // @throws Error when the module cannot be used.
    explicit Module(const std::string& path);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Calls a function of the module's list, whose entry may be missing.
    template <auto Function, class... Arguments> [[nodiscard]] CK_RV call(Arguments... arguments) const {
        return loaded_.call<Function>(arguments...);
    }

    // Slots that hold a card, in the module's order.
    [[nodiscard]] std::vector<CK_SLOT_ID> slots() const;
    // What a slot says it is, without the blanks behind it; empty when it says nothing.
    [[nodiscard]] std::string description(CK_SLOT_ID slot) const;
    // @throws Error when the card cannot be asked.
    [[nodiscard]] CK_TOKEN_INFO token(CK_SLOT_ID slot) const;

  private:
    pkcs11::Module loaded_;
};

// Why a call failed, to end a sentence; without a full stop.
[[nodiscard]] std::vector<Sentence> module_reason(CK_RV result);

enum class Access { reading, writing };

// A session with the card in a slot.
class Session {
  public:
    // @throws Error
    Session(const Module& module, CK_SLOT_ID slot, Access access = Access::reading);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Logs in, on a card that is open already anew. A PIN that the card refuses is not sent again.
    [[nodiscard]] CK_RV try_login(Pin& pin);
    // @throws Error. The PIN must have been proved before: see pin_gate.h.
    void log_in(Pin& pin);
    // Every object of the card, as far as the login shows it. @throws Error
    [[nodiscard]] std::vector<CK_OBJECT_HANDLE> objects() const;
    // An attribute; empty when the object has none or keeps it secret. @throws Error when it cannot be read:
    // that is no absence.
    [[nodiscard]] Bytes attribute(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) const;
    // The same of an object that nothing depends on: empty also when it cannot be read.
    [[nodiscard]] Bytes attribute_if_given(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) const;
    // Asks for several at once, as the module does it: its result, and what it wrote.
    [[nodiscard]] CK_RV read_at_once(CK_OBJECT_HANDLE object, std::vector<CK_ATTRIBUTE>& wanted) const;
    // Signs a PKCS#1 v1.5 block (a DigestInfo) with a private key. One that wants the PIN for that gets `pin`,
    // once; nothing when it refuses it. @throws Error
    [[nodiscard]] std::optional<Bytes> sign(CK_OBJECT_HANDLE key, Bytes digest_info,
                                            Pin* pin = nullptr) const;
    // @throws Error when the card keeps the object
    void destroy(CK_OBJECT_HANDLE object);
    // @throws Error when the card does not take it
    void create(std::vector<CK_ATTRIBUTE> attributes);
    // Whether a wrong PIN would be the last one, or there is none left. @throws Error
    [[nodiscard]] bool last_try() const;

  private:
    [[nodiscard]] CK_RV read(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Bytes& value) const;
    [[nodiscard]] bool takes(Pin& pin) const;

    const Module& module_;
    CK_SLOT_ID slot_;
    CK_SESSION_HANDLE handle_ = 0;
};

} // namespace zvhost
