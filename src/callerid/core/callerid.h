#pragma once
// Caller id ("bina"): what a device on the telephone line says about a call, and the call as
// the office sees it, with the number in the form the client register keeps, so that the
// dispatch screen can look the client up by it as if the operator had typed it.

#include <QDate>
#include <QMetaType>
#include <QString>
#include <QTime>

namespace rtx::callerid {

// Whether the line gave a number, and if not, why not.
enum class Presentation {
    Number,      // a number came
    Withheld,    // the caller hid his number (private, restricted)
    Unavailable, // the network had none to give (out of area, another carrier, public phone)
    Unreadable,  // something came that holds no number we can read
};

// One call as a device reported it, before the office's rules are applied.
struct CallerInfo {
    Presentation presentation = Presentation::Unavailable;
    QString number; // as sent, digits and whatever the device put around them
    QString name;   // the name some lines send; empty for most Brazilian lines
    QDate date;     // when the device says the call came, when it says so
    QTime time;
};

// How the office writes its clients' telephones: the local area code (DDD) of the office,
// and whether local numbers are kept with it ("1133334444") or without ("33334444").
struct NumberPlan {
    QString localAreaCode;
    bool localWithAreaCode = true;
};

// The number a line sent, in the form the register keeps: digits only; the country code 55,
// the trunk prefix 0 and the carrier code that follows it taken off; a number without area
// code given the local one (or the local one taken off, as the plan says). Non-geographic
// numbers (0800, 0300, 0500, 0900) stay whole. Empty when the text holds no digit.
QString normaliseNumber(const QString& sent, const NumberPlan& plan);

// A call as the office sees it.
struct Call {
    QString number; // normalised; empty when none came
    QString name;
    Presentation presentation = Presentation::Unavailable;
    QString sent; // the number as the line sent it
    bool withheld() const { return presentation == Presentation::Withheld; }
    bool hasNumber() const { return presentation == Presentation::Number && !number.isEmpty(); }
};

Call officeCall(const CallerInfo& info, const NumberPlan& plan);

// What the operator is told of a call that brings no number to look up; empty for a call with
// a number.
QString callNotice(const Call& call);

} // namespace rtx::callerid

Q_DECLARE_METATYPE(rtx::callerid::Call)
Q_DECLARE_METATYPE(rtx::callerid::CallerInfo)
