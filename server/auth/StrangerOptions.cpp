#include "server/auth/StrangerOptions.h"

#include <CLI/CLI.hpp>

namespace clockwell::server {

void addStrangerOptions(CLI::App &serve, StrangerOptions &options)
{
    struct Option
    {
        const char *name;
        unsigned StrangerOptions::*value;
        const char *help;
    };
    static constexpr Option all[] = {
        {"--failed-sign-ins-per-network", &StrangerOptions::failedSignIns,
         "Wrong passwords within a day from one network address, for whichever accounts"},
        {"--codes-per-address", &StrangerOptions::codesPerAddress,
         "Codes that one e-mail address may be sent within an hour; beyond that, one every 10 minutes"},
        {"--code-requests", &StrangerOptions::codeRequests,
         "Codes asked for within 15 minutes from one network address and not entered"},
        {"--wrong-codes", &StrangerOptions::wrongCodes,
         "Wrong codes for one e-mail address within a day before two codes are needed"},
        {"--wrong-codes-per-network", &StrangerOptions::wrongCodesPerNetwork,
         "Wrong codes from one network address within a day before two codes are needed"},
        {"--code-tries", &StrangerOptions::codeTries,
         "Wrong codes within 15 minutes from one network address before they are refused"},
        {"--sign-up-days", &StrangerOptions::signUpDays,
         "Days after which an account whose e-mail address nobody verified is removed"},
    };
    for (const Option &option : all)
        serve.add_option(option.name, options.*option.value, option.help)
            ->check(CLI::Range(1, 1'000'000))
            ->capture_default_str();
}

} // namespace clockwell::server
