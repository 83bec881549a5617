#pragma once

#include <string>

#include "displays/DisplayState.h"
#include "wire/Descriptor.h"

namespace headunit {

/// The displays of one unit as everybody there shares them: a file with their state, and beside it a PNG
/// file with what each display shows. Both are replaced as a whole, so that a reader never finds half of
/// one. Who changes something holds the lock meanwhile; looking takes none. Any thread.
class DisplayFiles {
public:
    /// In the unit's tree.
    static constexpr char kFolder[] = "/run/headunit";
    static constexpr char kState[] = "displays";
    static constexpr char kLock[] = "displays-lock";

    /// The name of a display's picture file: "display-4.png".
    static std::string pictureName(int display);

    /// `folder` is where the files are for this process; it exists.
    explicit DisplayFiles(std::string folder);

    /// Held until the result goes; waits for whoever holds it. Throws UnitError.
    System::Descriptor lock() const;

    /// The same without waiting: empty when somebody holds it. Throws UnitError.
    System::Descriptor tryLock() const;

    /// The state at the start when there is no file. Throws UnitError.
    DisplayState load() const;

    void save(const DisplayState& state) const;

    /// Draws the displays that are stale or were never drawn, and takes the note of it. Takes some
    /// milliseconds each. Throws UnitError.
    void draw(DisplayState& state) const;

private:
    System::Descriptor openLock() const;
    void replace(const std::string& name, const std::string& content) const;

    std::string m_folder; ///< with a '/' at its end
};

} // namespace headunit
