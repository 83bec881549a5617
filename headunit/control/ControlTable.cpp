#include "control/ControlTable.h"

#include "control/AudioControl.h"
#include "control/BluetoothControl.h"
#include "control/DisplayControl.h"
#include "control/I2cControl.h"
#include "control/LineControl.h"
#include "control/LineEndControl.h"
#include "control/MediumControl.h"
#include "control/PortControl.h"
#include "control/StateReport.h"
#include "control/WlanControl.h"
#include "unit/FormatText.h"
#include "unit/NameList.h"

namespace headunit {
namespace {

ControlRows joined(std::initializer_list<ControlRows> parts) {
    ControlRows all;
    for (const ControlRows& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

ControlRows lineRows() {
    return joined({lineControl(), stateReport(), lineEndControl()});
}

ControlRows boardRows() {
    return joined({i2cControl(), wlanControl(), bluetoothControl(), displayControl(), mediumControl(),
                   portControl(), audioControl()});
}

std::string shortForms(const ControlRows& rows) {
    std::vector<std::string> forms;
    for (const ControlRow& row : rows)
        forms.push_back(shortForm(row));
    return listed(forms);
}

} // namespace

const ControlRows& controlTable() {
    static const ControlRows kTable = joined({lineRows(), boardRows()});
    return kTable;
}

std::string controlHelp() {
    return formatText("%s; %s; LINE is %s, MEDIUM is %s", shortForms(lineRows()).c_str(),
                      shortForms(boardRows()).c_str(), listed(SerialLines::kNames, ", ", " or ").c_str(),
                      listed(BlockMedia::kNames, ", ", " or ").c_str());
}

} // namespace headunit
