// LikeMatches: the one LIKE matcher of the platform, shared by the criteria
// of Find and Filter and by the SQLite driver's LIKE. Both wildcard families
// are understood, because the system writes patterns for the desktop
// database (* and ?) as well as for client/server ones (% and _).
//
// Letters compare without regard to case (ASCII only, as SQLite's own LIKE);
// ? and _ match one whole UTF-8 character. Stateless and thread-safe.
#pragma once

#include <string_view>

namespace kelvary::internal {

// LikeMatches: whether text matches pattern: * and % match any run of
// characters (the empty one too), ? and _ exactly one character, anything
// else itself. escape, when not -1, makes the pattern character after it
// literal (a wildcard included).
bool LikeMatches(std::string_view pattern, std::string_view text, int escape = -1);

}  // namespace kelvary::internal
