#pragma once

namespace CLI {
class App;
}

namespace clockwell::server {

/// The limits for people who are not signed in; docs/server.md has the reasons of the defaults.
struct StrangerOptions
{
    unsigned failedSignIns = 1000;       ///< from one network address within a day
    unsigned codesPerAddress = 3;        ///< within an hour
    unsigned codeRequests = 100;         ///< from one network address within 15 minutes
    unsigned wrongCodes = 15;            ///< for one e-mail address within a day
    unsigned wrongCodesPerNetwork = 450; ///< within a day
    unsigned codeTries = 300;            ///< from one network address within 15 minutes
    unsigned signUpDays = 7;             ///< that an account waits for the proof of its address
};

/// Adds them to `serve`. `options` outlives the command line.
void addStrangerOptions(CLI::App &serve, StrangerOptions &options);

} // namespace clockwell::server
