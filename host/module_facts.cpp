#include "host/module_facts.h"

#include "host/error.h"
#include "host/front.h"
#include "host/in_child.h"
#include "host/place.h"
#include "host/wire.h"

namespace zvhost {
namespace {

using List = CK_FUNCTION_LIST;
using Stage = ModuleFacts::Stage;

// What the child tells, each behind its mark.
enum class Told : char { step, problem, no_module, started, info, slot, token, object };

void tell_step(const Tell& tell, Stage step) {
    tell(WireText().put(Told::step).put(step).text());
}

void tell_object(const Tell& tell, const CardObject& object) {
    const auto text = [](const Bytes& bytes) {
        return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    tell(WireText()
             .put(Told::object)
             .put(object.type)
             .put(std::string_view(object.id))
             .put(std::string_view(object.label))
             .put(text(object.value))
             .put(text(object.exponent))
             .text());
}

void tell_objects(const Tell& tell, const Module& module, CK_SLOT_ID slot) {
    try {
        const CardView view = view_in(Session(module, slot));
        for (const CardObject& object : view.objects())
            tell_object(tell, object);
    } catch (const Error&) {
        // What a card does not show is not told.
    }
}

void tell_slot(const Tell& tell, const Module& module, CK_SLOT_ID slot) {
    const std::string description = module.description(slot);
    tell(WireText().put(Told::slot).put(slot).put(std::string_view(description)).text());
    CK_TOKEN_INFO token{};
    if (module.call<&List::C_GetTokenInfo>(slot, &token) != CKR_OK) return;
    tell(WireText().put(Told::token).put(token).text());
    if ((token.flags & CKF_TOKEN_INITIALIZED) != 0) tell_objects(tell, module, slot);
}

// Whether it starts, and with which answer it does not.
bool starts(const Tell& tell, const pkcs11::Module& module) {
    const CK_RV result = module.call<&List::C_Initialize>(nullptr);
    tell(WireText().put(Told::started).put(result).text());
    if (result != CKR_OK) return false;
    CK_INFO info{};
    if (module.call<&List::C_GetInfo>(&info) == CKR_OK) tell(WireText().put(Told::info).put(info).text());
    (void)module.call<&List::C_Finalize>(nullptr);
    return true;
}

void use_module(const Tell& tell, const std::string& path) {
    {
        const pkcs11::Module loaded(module_way(path), pkcs11::Mapped::until_exit);
        tell_step(tell, Stage::starting);
        if (!starts(tell, loaded)) return;
    }
    tell_step(tell, Stage::listing);
    {
        const Module module(path);
        for (const CK_SLOT_ID slot : module.slots()) {
            tell_step(tell, Stage::reading);
            tell_slot(tell, module, slot);
        }
        tell_step(tell, Stage::ending);
    }
    end_modules();
    tell_step(tell, Stage::done);
}

void try_module(const Tell& tell, const std::string& path) {
    try {
        use_module(tell, path);
    } catch (const pkcs11::NotLoaded& reason) {
        tell(WireText().put(Told::problem).put(std::string_view(reason.what())).text());
    } catch (const pkcs11::NotAModule&) {
        tell(WireText().put(Told::no_module).text());
    } catch (const Error&) {
        // The step says where it ended.
    }
}

Bytes told_bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

bool take_object(WireReader& reader, ModuleFacts& facts) {
    CardObject object;
    std::string value, exponent;
    if (facts.slots.empty() || !reader.take(object.type) || !reader.take(object.id) ||
        !reader.take(object.label) || !reader.take(value) || !reader.take(exponent))
        return false;
    object.value = told_bytes(value);
    object.exponent = told_bytes(exponent);
    facts.slots.back().objects.push_back(std::move(object));
    return true;
}

bool take_slot(WireReader& reader, ModuleFacts& facts) {
    SlotFacts slot;
    if (!reader.take(slot.id) || !reader.take(slot.description)) return false;
    slot.card = !slot.description.empty();
    facts.slots.push_back(std::move(slot));
    return true;
}

template <class Value> bool take_into(WireReader& reader, std::optional<Value>& place) {
    Value value{};
    if (!reader.take(value)) return false;
    place = value;
    return true;
}

bool take_told(Told mark, WireReader& reader, ModuleFacts& facts) {
    switch (mark) {
    case Told::step:
        return reader.take(facts.reached);
    case Told::problem:
        return reader.take(facts.problem);
    case Told::no_module:
        facts.is_module = false;
        return true;
    case Told::started:
        return reader.take(facts.started);
    case Told::info:
        return take_into(reader, facts.info);
    case Told::slot:
        return take_slot(reader, facts);
    case Told::token:
        return !facts.slots.empty() && take_into(reader, facts.slots.back().token);
    case Told::object:
        return take_object(reader, facts);
    }
    return false;
}

} // namespace

std::string SlotFacts::serial() const {
    return token ? token_text(token->serialNumber, sizeof token->serialNumber) : "";
}

ModuleFacts ask_module(const std::string& path) {
    // What the front needs is made here, and not by a child that does not clear up.
    (void)front_file();
    const ChildAnswer answer =
        in_child([&](const Tell& tell) { try_module(tell, path); }, MOST_SECONDS_OF_A_MODULE);
    ModuleFacts facts;
    facts.signal = answer.signal;
    facts.late = answer.late;
    WireReader reader(answer.told);
    for (Told mark{}; reader.take(mark) && take_told(mark, reader, facts);) {
    }
    return facts;
}

} // namespace zvhost
