#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace clockwell::rush {

/// What kind of morning it is. The defaults are a company of 5,000 that arrives within three minutes.
struct RushOptions
{
    unsigned phones = 5000;
    unsigned seconds = 180;              ///< within which the phones arrive, each at a random moment
    unsigned addresses = 0;              ///< network addresses that they come from; 0: each from its own
    bool keepAlive = true;               ///< a phone keeps one connection for its GETs
    unsigned signIns = 0;                ///< people beside the phones who have to sign in with their password
    unsigned signInSeconds = 60;         ///< within which they arrive
    unsigned strangerSignIns = 0;        ///< a second, from one network address, never right
    unsigned idle = 0;                   ///< connections that are opened first, and held
    unsigned killAfter = 0;              ///< seconds until the server is killed and started again; 0: never
    unsigned patience = 300;             ///< seconds after which a person gives up
    std::string folder;                  ///< for the database and the server's log; empty: a temporary one
    std::string server;                  ///< URL of a server that runs already; empty: one is started
    std::string database;                ///< that server's database
    bool interrupted = false;            ///< somebody else interrupts that server
    bool flawless = false;               ///< no request may fail
    std::optional<unsigned> mostRepeats; ///< of a tap on the button, by one person; none: any number
    std::string acknowledged;            ///< file for the punches that were acknowledged; empty: none
    std::vector<std::string> serveOptions; ///< further options for the server that is started
};

/// Wrong usage, or the help text was asked for; `what()` is the text to print.
class UsageText : public std::runtime_error
{
public:
    UsageText(const std::string &text, int exitStatus) : runtime_error(text), m_exitStatus(exitStatus) {}
    int exitStatus() const { return m_exitStatus; } ///< 0 or 2

private:
    int m_exitStatus;
};

/// Reads a command line without the program's name. Throws UsageText.
RushOptions parseRushOptions(std::vector<std::string> arguments);

} // namespace clockwell::rush
