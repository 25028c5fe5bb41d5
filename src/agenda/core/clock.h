#pragma once
// The agenda's clock: the time on the screen and the date that "today" means. The program
// reads the machine's clock; tests set a clock of their own, so that the outlook's
// headings and the day steps are checked on any day.

#include <QDate>
#include <QDateTime>

namespace rtx::agenda {

class Clock {
public:
    virtual ~Clock();
    virtual QDateTime now() const = 0;
    QDate today() const { return now().date(); }
};

// The clock in use; the machine's until another is set.
const Clock& clock();
// Sets the clock (not owned); nullptr goes back to the machine's.
void setClock(const Clock* clock);

// A clock that stands still where it is put (tests, screenshots).
class FixedClock : public Clock {
public:
    explicit FixedClock(QDateTime at) : at_(std::move(at)) {}
    QDateTime now() const override { return at_; }
    void set(const QDateTime& at) { at_ = at; }

private:
    QDateTime at_;
};

} // namespace rtx::agenda
