#pragma once

// The keep flag of the command block: what is to stay on the card.
namespace zv {

inline constexpr char KEEP_REPLACED[] =
    "R"; // an installation: the certificate that it replaces, and its pair
inline constexpr char KEEP_PENDING_PAIR[] = "K"; // a request: the pair of an earlier one
inline constexpr char KEEP_NOTHING[] = "D";

} // namespace zv
