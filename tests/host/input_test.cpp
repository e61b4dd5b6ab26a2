// Hostile arguments: every exported routine with every kind of text, without a card and with one.
#include "api/state.h"
#include "simcard/tool/as_made.h"
#include "tests/flows/flow.h"
#include "tests/support/process.h"

#include <functional>
#include <tuple>

namespace {

using namespace zvtest;

constexpr std::size_t ROOM = 1 << 17;
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t STEP = 7;
#else
constexpr std::size_t STEP = 1;
#endif
const std::string MEGABYTE(1 << 20, 'A');

struct Input {
    std::string text;
    unsigned long number;
    unsigned long nulls; ///< a bit for each argument that is null
    [[nodiscard]] bool isNull(int place) const { return (nulls >> place & 1) != 0; }
};

// An argument of that type. Behind a pointer there is the text, zeros behind it, as much as anything asks for.
template <class T> struct Made {
    T value{};
    Made(const Input& input, int) {
        if constexpr (std::is_integral_v<T>) value = static_cast<T>(input.number);
    }
};
template <class T> struct Made<T&> {
    std::remove_const_t<T> value{};
    Made(const Input&, int) {}
};
template <class T> struct Made<T*> {
    std::unique_ptr<void, decltype(&std::free)> memory{nullptr, &std::free};
    T* value = nullptr;
    Made(const Input& input, int place) {
        // Pieces are no texts, and their end is null.
        if (input.isNull(place) || std::is_same_v<T, ADATA>) return;
        memory.reset(std::calloc(ROOM + input.text.size(), 1));
        value = static_cast<T*>(memory.get());
        if (!std::is_same_v<T, CK_ATTRIBUTE>)
            input.text.copy(static_cast<char*>(memory.get()), input.text.size());
    }
};
template <> struct Made<char**> {
    Made<char*> text;
    std::vector<char*> entries;
    char** value;
    Made(const Input& input, int place)
        : text(input, place), entries(16, text.value), value(input.isNull(place) ? nullptr : entries.data()) {
    }
};

// Calls a routine and says whether that gave 0.
struct Routine {
    std::function<bool(const Input&)> call; ///< empty for a variable
    int arguments = 0;
};
template <class... A, class F, int... I> Routine calling(F call, std::integer_sequence<int, I...>) {
    return {[call](const Input& input) {
                std::tuple<Made<A>...> made{Made<A>(input, I)...};
                return std::apply([&](auto&... each) { return call(each.value...); }, made);
            },
            sizeof...(A)};
}
template <class T> Routine routineOf(T*) {
    return {};
}
template <class R, class... A> Routine routineOf(R (*routine)(A...)) {
    const auto call = [routine](auto&... values) {
        if constexpr (!std::is_void_v<R>) return routine(values...) == R{};
        return routine(values...), false;
    };
    return calling<A...>(call, std::make_integer_sequence<int, sizeof...(A)>());
}
template <class R, class... A> Routine routineOf(R (*routine)(A..., ...)) {
    const auto call = [routine](auto&... values) { return routine(values..., nullptr) == R{}; };
    return calling<A...>(call, std::make_integer_sequence<int, sizeof...(A)>());
}

class Hostile : public Flow {
  protected:
    // The card logged in to when it is to be used, and as it was made when its PIN is locked.
    void prepare(bool withCard) {
        std::string pin = PIN, library = path();
        if (withCard && zv::hSession != 0) return;
        finalizza();
        if (!withCard || __Initialize(0, pin.data(), library.data()) == 0) return;
        finalizza();
        simcard::put_back_as_made(card.folder);
        if (__Initialize(0, pin.data(), library.data()) != 0) ::_exit(3);
    }
};

TEST_F(Hostile, ArgumentsOfEveryRoutine) {
    const std::pair<std::string, Routine> routines[] = {
#define ENTRY(name) {#name, routineOf(&name)},
#include "exports.inc"
#undef ENTRY
    };
    ASSERT_EQ(read().result, 0);
    for (const auto& [name, routine] : routines) {
        if (routine.call == nullptr) continue;
        const Ending ending = in_child([&, &name = name, &routine = routine] {
            ::alarm(60);
            for (const bool withCard : {false, true}) {
                std::vector<Input> inputs = {{"DS0", 4096, ~0UL}};
                for (const char* text : {"", MEGABYTE.c_str(), "\xC3\xA0\xFF\x80", "%5d%s%n",
                                         "DS0\nslot:9\nszpin:0\nEND_STRING\r\n"})
                    inputs.push_back({text, withCard ? 64UL : 0UL, 0});
                for (int place = 0; place < routine.arguments; ++place)
                    inputs.push_back({"DS0", 64, 1UL << place});
                for (const Input& input : inputs) {
                    prepare(withCard);
                    const bool gave0 = routine.call(input);
                    if (gave0 && input.nulls == 0 && name.starts_with("rinnovo_")) return 2;
                }
            }
            return 0;
        });
        EXPECT_EQ(ending.code, 0) << name << ", signal " << ending.signal;
    }
}

// A block that ends anywhere is refused, and whatever it opened is closed.
TEST_F(Hostile, CommandBlockCutAnywhere) {
    ASSERT_EQ(read().result, 0);
    std::string label = "DS0", pending = "DS3";
    RichiestaMinInfo(label.data(), PIN, "none", pending.data(), "PRA", "R");
    const std::string whole = zv::szBufferRichiesta;
    for (std::size_t size = 0; size < whole.size(); size += STEP)
        for (const char* command : {"REQREN", "REQSCA"}) {
            std::string block = whole.substr(0, size);
            std::vector<char> out(8000);
            long room = 8000;
            EXPECT_NE(miExecCmd(command, block.data(), 0, out.data(), &room), 0) << command << size;
            EXPECT_EQ(zv::hSession, 0u);
            // A PIN that is cut costs a try.
            if (triesLeft() < 3) simcard::put_back_as_made(card.folder);
        }
}

} // namespace
