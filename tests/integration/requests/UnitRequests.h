#pragma once

#include <string>

#include "requests/Dice.h"
#include "requests/Exchange.h"

/// Requests to the commands for the unit's other devices and files, which all stations use at the same
/// time: where an answer depends on the others, only its form is known.
class UnitRequests {
public:
    /// `number` tells the station from the others. The stamp is the daemon's.
    UnitRequests(Dice& dice, int number, std::string buildStamp)
        : m_dice(dice), m_number(number), m_buildStamp(std::move(buildStamp)) {}

    Exchange i2c();
    Exchange port();
    Exchange audio();
    Exchange serial();
    Exchange graphic();
    Exchange exec();
    Exchange status();
    Exchange acknowledgement();
    Exchange unknown();

private:
    using Request = Exchange (UnitRequests::*)();

    Exchange i2cRead();
    Exchange i2cWrite();
    Exchange i2cAttribute();
    Exchange i2cRefused();
    Exchange portRead();
    Exchange portWrite();
    Exchange portAttributes();
    Exchange portRefused();
    Exchange serialRefused();

    Dice& m_dice;
    int m_number;
    std::string m_buildStamp;
    int m_drawn = 0;
};
