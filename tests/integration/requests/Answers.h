#pragma once

#include "line/Adapter.h"
#include "requests/Exchange.h"
#include "support/Connection.h"

/// Send one request and take in all that comes for it. What is not as expected throws
/// std::runtime_error, which shows both.

void exchangeLine(Connection& station, const Exchange& exchange);

/// Each answer is acknowledged.
void exchangeFrame(Adapter& station, const Exchange& exchange);
