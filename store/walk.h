#pragma once

#include "pkcs11.h"

#include <span>
#include <type_traits>

// The one walk over the card's objects. Which objects, what the log is told and which ends leave the search open
// stand in its Search; what is read of an object and what a failed read does, in the function that visits it.
namespace zv {

inline constexpr char SEARCH_ERROR[] = "Errore nella ricerca degli oggetti presenti sulla smartcard (%s)";

enum class SearchStep { start, next, end };

// A call of a search, as the log is told of it.
struct SearchCall {
    SearchStep step;
    const char* name; // of the PKCS#11 function
    const char* title;
    CK_SESSION_HANDLE session;
    int round;                   // which call of its step, from 1
    CK_RV result = CKR_OK;       // known afterwards, as all below
    CK_OBJECT_HANDLE object = 0; // the last one, when none was found
    CK_ULONG found = 0;
};

// What a routine logs before each call of its search, and afterwards.
struct SearchLog {
    using Hook = void (*)(const SearchCall&);
    Hook before = [](const SearchCall&) {};
    Hook after = [](const SearchCall&) {};
};

// What becomes of a search: ended with a call of its own, logged and checked as the others; closed in silence, with
// zv::rv left alone; left open.
enum class Exit { ended, closed, left_open };

struct Exits {
    Exit when_find_fails = Exit::closed;
    Exit when_given_up = Exit::closed; // also when the visit throws
    Exit at_end = Exit::ended;
};

inline constexpr Exits ALWAYS_ENDED = {Exit::ended, Exit::ended, Exit::ended};
inline constexpr Exits ALWAYS_LEFT_OPEN = {Exit::left_open, Exit::left_open, Exit::left_open};

constexpr CK_ULONG EVERY_OBJECT = ~0UL;
constexpr CK_ULONG FIRST_OBJECT = 1;

struct Search {
    CK_SESSION_HANDLE session;
    std::span<CK_ATTRIBUTE> tmpl = {}; // none: all objects of the card
    CK_ULONG most = EVERY_OBJECT;      // no more than so many are asked for
    SearchLog log = {};                // nothing, by default
    Exits exits = {};
    const char* title = ""; // for the log
};

// How a walk ended, and the result of the call that ended it. zv::rv is that of the last call but a closing one.
struct Walked {
    enum class End { whole, not_started, find_failed, given_up, not_ended } how = End::whole;
    CK_RV code = CKR_OK;
    [[nodiscard]] bool whole() const { return how == End::whole; }
};

// Looks at what a call found: more than it asked for is CKR_GENERAL_ERROR.
[[nodiscard]] CK_RV check_found(CK_ULONG found, CK_ULONG asked);

// The calls of one search; walk drives them.
class OpenSearch {
  public:
    explicit OpenSearch(const Search& search);
    OpenSearch(const OpenSearch&) = delete;
    OpenSearch& operator=(const OpenSearch&) = delete;
    ~OpenSearch();

    // Asks for the object behind the last one; false when none is left, enough were given or a call failed.
    [[nodiscard]] bool next(CK_OBJECT_HANDLE& object);
    Walked give_up();
    Walked end();

  private:
    void leave(Exit exit);

    const Search& search_;
    bool open_;
    int given_ = 0;
    Walked walked_;
};

// What a visit says of the walk: Stop ends it as the last object does.
enum class Visit { go_on, stop, give_up };

// Visits the objects that a search finds, one after the other; a visit that says nothing goes on.
template <typename Visitor> Walked walk(const Search& search, Visitor visit) {
    OpenSearch open(search);
    for (CK_OBJECT_HANDLE object = 0; open.next(object);) {
        if constexpr (std::is_void_v<decltype(visit(object))>) {
            visit(object);
        } else {
            const Visit said = visit(object);
            if (said == Visit::give_up) return open.give_up();
            if (said == Visit::stop) break;
        }
    }
    return open.end();
}

// Starts a search, without a walk; end_search ends it. Both are logged, leave their result in zv::rv and return it.
CK_RV start_search(const Search& search);
CK_RV end_search(const Search& search);

// Ends whatever search is open, in silence; leaves zv::rv alone.
void close_search(CK_SESSION_HANDLE session);

} // namespace zv
