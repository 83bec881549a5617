#include "devices/StoredPictures.h"

#include <string>

namespace headunit {

void StoredPictureFiles::install(UnitTree& tree) {
    for (const StoredPicture& picture : storedPictures())
        tree.createFile(kFolder + std::string(picture.name) + ".gz", std::string(picture.compressed));
}

} // namespace headunit
