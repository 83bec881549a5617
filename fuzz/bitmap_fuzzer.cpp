// The simulated displays' reader of pictures: whatever a file holds, it is a picture that is written and
// read again as it was, or none.

#include <algorithm>
#include <optional>
#include <string_view>

#include "Expect.h"
#include "pictures/BitmapFile.h"

namespace {

using headunit::Picture;

bool isSame(const Picture& one, const Picture& other) {
    const std::size_t points = one.width() * one.height();
    return one.width() == other.width() && one.height() == other.height() &&
           std::equal(one.points(), one.points() + points, other.points());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongestSide = 4096;
    constexpr std::size_t kBytesOfPoint = 3;
    const std::optional<Picture> picture =
        headunit::decodeBitmap({reinterpret_cast<const char*>(data), size});
    if (!picture)
        return 0;
    expect(picture->width() > 0 && picture->width() <= kLongestSide && picture->height() > 0 &&
               picture->height() <= kLongestSide,
           "A picture has 1 to 4096 points a side");
    expect(picture->width() * picture->height() * kBytesOfPoint <= size,
           "A picture's points are in its file");
    const std::optional<Picture> again = headunit::decodeBitmap(headunit::encodeBitmap(*picture));
    expect(again && isSame(*picture, *again), "A picture that was written is read as it was");
    return 0;
}
