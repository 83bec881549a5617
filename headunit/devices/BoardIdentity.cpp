#include "devices/BoardIdentity.h"

namespace headunit {

void BoardIdentity::install(UnitTree& tree) {
    tree.createFile(kRevisionNode, kRevision);
    tree.createFile(kSerialNumberNode, kSerialNumber);
}

} // namespace headunit
