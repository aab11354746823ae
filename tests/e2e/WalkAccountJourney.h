#pragma once

#include "ServerProcess.h"
#include "Tour.h"

namespace clockwell::test {

/// Walks through the life of an account: sign-up, the code from the outbox, the refused sign-in before
/// approval, approval with the admin command, sign-in, change of the password, sign-out, reset of the
/// forgotten password, sign-in, sign-out. Begins and ends on the sign-in screen.
void walkAccountJourney(Tour &tour, const ServerProcess &server);

} // namespace clockwell::test
