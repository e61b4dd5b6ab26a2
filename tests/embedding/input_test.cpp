// Hostile arguments: every exported routine with every kind of text, without a card and with one.
#include "card/session.h"
#include "routines.h"
#include "simcard/authority/files.h"
#include "simcard/tool/as_made.h"
#include "tests/flows/flow.h"
#include "tests/support/process.h"

#include <functional>
#include <tuple>

namespace {

using namespace zvtest;

constexpr std::size_t ROOM = 1 << 17, ARGUMENTS = 14;

struct Input {
    std::string text;
    unsigned long number;
    unsigned long nulls; // a bit for each argument that is null
};
using Memory = std::vector<std::unique_ptr<void, decltype(&std::free)>>;

// The next argument. Behind a pointer there is the text, zeros behind it, as much as anything asks for.
template <class T> T argument(Input& input, Memory& memory) {
    const bool null = (std::exchange(input.nulls, input.nulls >> 1) & 1) != 0;
    if constexpr (std::is_reference_v<T>) {
        static std::remove_cvref_t<T> value;
        return value;
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(input.number);
    } else {
        // Pieces are no texts, and their end is null.
        if (null || std::is_same_v<T, ADATA*>) return nullptr;
        void* const made = memory.emplace_back(std::calloc(ROOM + input.text.size(), 1), &std::free).get();
        if constexpr (std::is_same_v<T, char**>) {
            Input same{input.text, 0, 0};
            std::fill_n(static_cast<T>(made), 16, argument<char*>(same, memory));
        } else if (!std::is_same_v<T, CK_ATTRIBUTE*>)
            input.text.copy(static_cast<char*>(made), input.text.size());
        return static_cast<T>(made);
    }
}

// Calls a routine and says whether that gave 0; with a variable it does nothing.
using Routine = std::function<bool(Input)>;
template <class T> Routine routine_of(T*) {
    return [](const Input&) { return false; };
}
template <class R, class... A> Routine routine_of(R (*routine)(A...)) {
    return [routine]([[maybe_unused]] Input input) {
        Memory memory;
        const std::tuple<A...> made{argument<A>(input, memory)...};
        if constexpr (!std::is_void_v<R>) return std::apply(routine, made) == R{};
        return std::apply(routine, made), false;
    };
}

class Hostile : public Flow {
  protected:
    // The card logged in to when it is to be used, and as it was made when its PIN is locked.
    void prepare(bool with_card) {
        std::string pin = PIN, library = path();
        if (with_card && zv::hSession != 0) return;
        finalizza();
        if (!with_card || __Initialize(0, pin.data(), library.data()) == 0) return;
        finalizza();
        simcard::put_back_as_made(card.folder);
        if (__Initialize(0, pin.data(), library.data()) != 0) ::_exit(3);
    }
};

TEST_F(Hostile, ArgumentsOfEveryRoutine) {
    const std::pair<std::string, Routine> routines[] = {
#define ENTRY(name) {#name, routine_of(&name)},
#include "exports.inc"
#undef ENTRY
    };
    ASSERT_EQ(read().result, 0);
    const auto at = log.folder() / "at";
    const Ending ending = in_child([&] {
        for (const bool with_card : {false, true})
            for (const auto& [name, routine] : routines) {
                std::ofstream(at) << name;
                std::vector<Input> inputs = {{"DS0", 4096, ~0UL}};
                for (const std::string& text :
                     std::initializer_list<std::string>{"", std::string(1 << 18, 'A'), "\xC3\xA0\xFF\x80",
                                                        "%5d%s%n", "DS0\nslot:9\nszpin:0\nEND_STRING\r\n"})
                    inputs.push_back({text, with_card ? 64UL : 0UL, 0});
                for (std::size_t place = 0; place < ARGUMENTS; ++place)
                    inputs.push_back({"DS0", 64, 1UL << place});
                for (const Input& input : inputs) {
                    prepare(with_card);
                    const bool gave0 = routine(input);
                    if (gave0 && input.nulls == 0 && name.starts_with("rinnovo_")) return 2;
                }
            }
        return 0;
    });
    EXPECT_EQ(ending.code, 0) << simcard::read_file(at) << ", signal " << ending.signal;
}

} // namespace
