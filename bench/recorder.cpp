#include "bench/recorder.h"

#include "pkcs11/forwarding.h"

#include <algorithm>
#include <cstring>

namespace bench {
namespace {

Recorder* recorder = nullptr;

// Room for any structure or signature that a module gives.
constexpr std::size_t ANY_ANSWER = 4096;

} // namespace

KeptCall::KeptCall(const pkcs11::Call& made) : call(made) {
    for (std::size_t i = 0; i < made.parameters().size(); ++i)
        call.arguments[i] = keep_argument(made, i);
}

CK_ULONG KeptCall::keep(const void* bytes, std::size_t size, std::size_t room) {
    auto kept = std::make_unique<Room>();
    kept->as_given.resize(std::max(size, room));
    if (size != 0) std::memcpy(kept->as_given.data(), bytes, size);
    kept->live = kept->as_given;
    return pkcs11::to_number(rooms.emplace_back(std::move(kept))->live.data());
}

CK_ULONG KeptCall::keep_template(CK_ATTRIBUTE* attributes, std::size_t count) {
    std::vector<CK_ATTRIBUTE> copies(attributes, attributes + count);
    for (CK_ATTRIBUTE& one : copies)
        if (one.pValue != nullptr)
            one.pValue = pkcs11::from_number<void*>(keep(one.pValue, one.ulValueLen, one.ulValueLen));
    return keep(copies.data(), count * sizeof(CK_ATTRIBUTE), 1);
}

CK_ULONG KeptCall::keep_mechanism(CK_MECHANISM mechanism) {
    if (mechanism.pParameter != nullptr)
        mechanism.pParameter = pkcs11::from_number<void*>(
            keep(mechanism.pParameter, mechanism.ulParameterLen, mechanism.ulParameterLen));
    return keep(&mechanism, sizeof mechanism, sizeof mechanism);
}

CK_ULONG KeptCall::keep_argument(const pkcs11::Call& made, std::size_t index) {
    using pkcs11::Role;
    const auto& parameters = made.parameters();
    const CK_ULONG value = made.arguments[index];
    const bool counted = index + 1 < parameters.size() && parameters[index + 1].type == "CK_ULONG";
    const bool is_pointer = parameters[index].type.ends_with("_PTR");
    if (!is_pointer || value == 0) return value;
    if (parameters[index].role == Role::attributes)
        return keep_template(made.pointer<CK_ATTRIBUTE>(index), made.arguments[index + 1]);
    if (parameters[index].role == Role::mechanism) return keep_mechanism(*made.pointer<CK_MECHANISM>(index));
    if (made.function == pkcs11::Function::C_Initialize)
        return keep(made.pointer<void>(index), sizeof(CK_C_INITIALIZE_ARGS), 0);
    if (parameters[index].role == Role::size) return keep(made.pointer<void>(index), sizeof(CK_ULONG), 0);
    // Bytes that go in are followed by their number; all else comes out.
    const bool goes_in = counted && parameters[index].role != Role::new_objects;
    return keep(made.pointer<void>(index), goes_in ? made.arguments[index + 1] : 0, ANY_ANSWER);
}

void KeptCall::rewind() {
    for (const auto& room : rooms)
        std::memcpy(room->live.data(), room->as_given.data(), room->live.size());
}

Recorder::Recorder(CK_FUNCTION_LIST& list, std::filesystem::path log)
    : log_(std::move(log)), list_(list), own_(list) {
    recorder = this;
    list = pkcs11::forwarding_list<record>();
}

Recorder::~Recorder() {
    list_ = own_;
    recorder = nullptr;
}

CK_RV Recorder::record(const pkcs11::Call& call) noexcept {
    if (call.function == pkcs11::Function::C_GetFunctionList)
        return call.invoke(recorder->own_, call.arguments);
    KeptCall kept(call);
    std::error_code none;
    kept.log_size =
        std::filesystem::exists(recorder->log_, none) ? std::filesystem::file_size(recorder->log_, none) : 0;
    kept.result = call.invoke(recorder->own_, call.arguments);
    return recorder->calls.emplace_back(std::move(kept)).result;
}

} // namespace bench
