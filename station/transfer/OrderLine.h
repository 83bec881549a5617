#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "transfer/Order.h"

namespace station {

/// The part of the program's help that is about transfers.
extern const char kTransferHelp[];

/// True for a command that is a transfer and not a request of the unit's own.
bool isTransfer(const std::string& name, const std::vector<std::string>& arguments);

/// Reads the arguments of such a command. Nothing when they ask for help, which then went to `help`.
/// Throws `Failure` (`InvalidRequest`) for arguments that cannot be followed.
std::optional<Order> parseOrder(const std::string& name, const std::vector<std::string>& arguments,
                                std::ostream& help);

} // namespace station
