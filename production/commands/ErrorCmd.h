#pragma once

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// The command in whose name unknown requests are answered.
/// It is not registered, so no request reaches it.
class ErrorCmd : public AbstractCmd {
public:
    static ErrorCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    /// The generic error for a request.
    std::unique_ptr<ProcessResponseTavrin> generateGenericTavrinError(
        const std::vector<unsigned char>* request, const std::string& text);

private:
    ErrorCmd();

    static System::Mutex s_singleton_mutex;
};
