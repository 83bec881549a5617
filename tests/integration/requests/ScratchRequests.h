#pragma once

#include <cstdint>
#include <string>

#include "requests/Dice.h"
#include "requests/Exchange.h"
#include "requests/Medium.h"
#include "requests/Window.h"

/// Requests of one station to the commands that share the scratch buffer: memory, blockdev and diag.
/// What they move is known, since nobody else uses the station's window and medium. Each request must be
/// answered before the next one is drawn.
class ScratchRequests {
public:
    ScratchRequests(Dice& dice, std::uint32_t windowBegin, const Medium::Place& medium)
        : m_dice(dice), m_window(windowBegin), m_medium(medium) {}

    Exchange memory();
    Exchange checksum();
    Exchange block();

    /// The checksum of the whole window: whether all is in it that should be.
    Exchange wholeWindow() const;

private:
    struct Access {
        const char* keyword;
        std::uint32_t width;
        std::uint32_t readCode;
        bool isChecked;
    };
    struct Place {
        std::uint32_t count;
        std::uint32_t address;
    };

    Place placeFor(const Access& access);
    Place placeOutOfRange(const Access& access, std::uint32_t& code);
    Exchange memoryRead(const Access& access);
    Exchange memoryWrite(const Access& access);
    Exchange memoryRefused(const Access& access);

    Exchange checksumRefused();
    Exchange checksumOfZeros();

    Exchange openOrClose(bool opening);
    Exchange transfer(bool writing);
    Exchange transferRefused(bool writing);
    Exchange noSuchMedium();
    Exchange transferOf(bool writing, std::uint32_t first, std::uint32_t count, std::uint32_t offset,
                        const Expected& line, const Expected& frame);
    std::uint32_t blocksThatFit() const;
    void checkWritten();

    Dice& m_dice;
    Window m_window;
    Medium m_medium;
    /// What the last request must have written, when it was answered.
    struct {
        std::uint32_t firstBlock = 0;
        std::uint32_t count = 0;
        std::string bytes;
    } m_written;
};
