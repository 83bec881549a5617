#include "commands/ErrorCmd.h"

#include "runtime/OnlyObject.h"

System::Mutex ErrorCmd::s_singleton_mutex(System::Mutex::Normal);

ErrorCmd* ErrorCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new ErrorCmd; });
}

ErrorCmd::ErrorCmd() : AbstractCmd(0, "Error", false) {}

ProcessResponse* ErrorCmd::process(std::vector<std::vector<char>>&) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kSuccess, "asdf").release();
}

ProcessResponse* ErrorCmd::process(std::vector<unsigned char>*) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kSuccess, "asdf").release();
}

std::unique_ptr<ProcessResponseTavrin> ErrorCmd::generateGenericTavrinError(
    const std::vector<unsigned char>* request, const std::string& text) {
    return tavrin_generateGenericError(request, text);
}
