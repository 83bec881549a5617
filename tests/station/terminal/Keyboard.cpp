#include "Keyboard.h"

#include <gtest/gtest.h>

#include "support/Waiting.h"

namespace station {

bool Keyboard::isCooked() const {
    constexpr tcflag_t kCooked = ICANON | ECHO | ISIG;
    const termios now = attributes();
    return (now.c_lflag & kCooked) == kCooked && (now.c_oflag & OPOST) != 0;
}

void Keyboard::waitUntilRaw() const {
    EXPECT_TRUE(eventually([this] { return !isCooked(); })) << "the terminal stays as it is";
}

} // namespace station
