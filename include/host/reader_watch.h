#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace zvhost {

// Sees readers and cards come and go, for who shows them as they are. A reader of the PC/SC service is watched there, so
// that no card's module is loaded; a software reader's card shows in its module alone, which stays loaded. It works without
// the service, too, and notices when that starts or ends.
class ReaderWatch {
  public:
    // @param module_dir  as CardChoice has it
    explicit ReaderWatch(std::string module_dir = {});
    ~ReaderWatch();
    ReaderWatch(const ReaderWatch&) = delete;
    ReaderWatch& operator=(const ReaderWatch&) = delete;

    // Whether the readers, or the cards in them, are others than at the last call; true the first time. It uses the
    // libraries, as every look at a card does: not while another thread does so.
    [[nodiscard]] bool changed();

    // Waits until the service tells that something is not as it was at the last changed(), until wake(), or so long. Of
    // software readers nobody tells. It uses no library; not in two threads at once.
    void wait(std::chrono::milliseconds at_most);

    // Ends the wait that is under way, else the next one. From any thread.
    void wake();

  private:
    class Watch;
    std::unique_ptr<Watch> watch_;
};

} // namespace zvhost
