#pragma once

#include "ServerProcess.h"
#include "Tour.h"

namespace clockwell::test {

/// From the sign-in screen to a new account and back out: sign-up, the code from the outbox, the refusal of
/// an account that nobody approved yet, its approval by the admin command, sign-in, change of the password,
/// sign-out, a forgotten password, its reset, sign-in, sign-out. Begins and ends on the sign-in screen.
void walkAccountJourney(Tour &tour, const ServerProcess &server);

} // namespace clockwell::test
