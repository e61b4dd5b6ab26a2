#pragma once

#include "simcard/virtual/applet.h"
#include "simcard/virtual/applet_files.h"
#include "simcard/virtual/applet_keys.h"
#include "simcard/virtual/applet_pin.h"

namespace simcard {

// A signature card with files, a PIN and RSA keys, in the command set that OpenSC knows as IsoApplet: new, with
// nothing on it, whenever the program starts. `pkcs15-init` gives it its PINs and its first files.
//
// Whatever is written needs the PIN, as its file says; key pairs are made and used with it alone. Three wrong
// PINs block it, the PUK sets another.
class IsoApplet : public Applet {
  public:
    void reset() override;
    [[nodiscard]] std::vector<std::uint8_t> answer(std::span<const std::uint8_t> command) override;

  private:
    [[nodiscard]] Octets run(const Command& command);
    [[nodiscard]] Octets select(const Command& command);
    // The first part of what there is to answer, at most as much as the command expects.
    [[nodiscard]] Octets next_part(std::size_t expected);
    void verify(const Command& command);
    void change(const Command& command);
    void unblock(const Command& command);
    [[nodiscard]] CardPin& pin_named(std::uint8_t reference);
    void require_pin() const;

    CardFiles files_;
    CardKeys keys_;
    CardPin pin_, puk_;
    Octets chained_; // the data of a command's parts so far
    Octets waiting_; // answer that GET RESPONSE will fetch
};

} // namespace simcard
