#include "changes.h"

namespace rtx {

Changes& changes() {
    static Changes instance;
    return instance;
}

} // namespace rtx
