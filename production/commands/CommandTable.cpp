#include "commands/ackCmd.h"
#include "commands/cReadCmd.h"
#include "commands/sReadCmd.h"
#include "core/Handler.h"

// Creating a command registers it; the order decides who wins an id or a name.
void Handler::initHandler() {
    ackCmd::getInstance();
    sReadCmd::getInstance();
    cReadCmd::getInstance();
    start();
}
