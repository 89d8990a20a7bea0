#ifndef TOVOFORMULA_TESTS_RANDOMNET_H
#define TOVOFORMULA_TESTS_RANDOMNET_H

#include <ostream>
#include <string>

// Jobs of formulas, tables, variables and host's objects that refer to one another at random, and
// that a host then works with at random.

namespace tovo::test {

// What a net holds, or what is done with it, besides the stock objects of a stock set.
enum NetFlag : unsigned int {
    NET_DERIVED = 1,      // derived formulas, tables and variables
    NET_HOSTS = 2,        // a derived set with objects of the host's own
    NET_LOOKUP = 4,       // a derived set that uses the stock lookup
    NET_FAULTS = 8,       // domain faults, reported at times
    NET_HELD = 16,        // held passes, also nested
    NET_CHANGES = 32,     // changes and calls from inside the host's objects
    NET_NAMES = 64,       // shared, empty and changed names, objects outside the set
    NET_SCANS = 128,      // mostly scans and conditions
    NET_COPIES = 256,     // copies of the set, and another set with the same objects
    NET_TABLES = 512,     // mostly tables, changed and seldom cleared
    NET_BARE = 1024,      // expressions of the host's own, other separators
    NET_OPERANDS = 2048,  // operands
    NET_THROWS = 4096,    // host's objects that throw
    NET_ALL = 8191 & ~4u, // there is one set of each kind
};

struct NetKind {
    const char* name;
    unsigned int flags;
};
inline void PrintTo(const NetKind& kind, std::ostream* out)
{
    *out << kind.name;
}

// All that a host sees of a net, in lines: one that begins with ">" for each action, then what can
// be seen after it; one with ":=" for each text.
std::string LiveOfNet(unsigned int flags, unsigned int seed, bool isRemembering);

} // namespace tovo::test

#endif
