#include "commands/DCmd.h"
#include "commands/ECmd.h"
#include "commands/GCmd.h"
#include "commands/IWriteCmd.h"
#include "commands/PWriteCmd.h"
#include "commands/SWriteCmd.h"
#include "commands/ackCmd.h"
#include "commands/cReadCmd.h"
#include "commands/iReadCmd.h"
#include "commands/mCmd.h"
#include "commands/pReadCmd.h"
#include "commands/sReadCmd.h"
#include "commands/tCmd.h"
#include "core/Handler.h"

// Creating a command registers it; the order decides who wins an id or a name.
void Handler::initHandler() {
    ackCmd::getInstance();
    DCmd::getInstance();
    ECmd::getInstance();
    GCmd::getInstance();
    iReadCmd::getInstance();
    IWriteCmd::getInstance();
    mCmd::getInstance();
    pReadCmd::getInstance();
    PWriteCmd::getInstance();
    sReadCmd::getInstance();
    cReadCmd::getInstance();
    SWriteCmd::getInstance();
    tCmd::getInstance();
    start();
}
