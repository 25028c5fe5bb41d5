#include "agenda/core/clock.h"

namespace rtx::agenda {

Clock::~Clock() = default;

namespace {

class MachineClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

const Clock* installed = nullptr;

} // namespace

const Clock& clock() {
    static const MachineClock machine;
    return installed ? *installed : machine;
}

void setClock(const Clock* c) {
    installed = c;
}

} // namespace rtx::agenda
