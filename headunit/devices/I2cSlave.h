#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace headunit {

/// A chip on the I2C bus, as it sees the bytes that are meant for it. Not synchronised.
class I2cSlave {
public:
    virtual ~I2cSlave() = default;

    /// The bytes of one transfer to the chip, none when it was only addressed.
    virtual void write(std::string_view bytes) = 0;

    /// The next `count` bytes that the chip has to say.
    virtual std::string read(std::size_t count) = 0;

    /// Its state in a few words for the user.
    virtual std::string description() const = 0;
};

} // namespace headunit
