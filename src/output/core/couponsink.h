#pragma once
// Where the counter coupon goes, as the installation's rotalix.ini says:
//
//     [cupom]
//     porta=/dev/usb/lp0      ; a device file: a USB printer, a serial port (/dev/ttyUSB0)
//     fila=BALCAO             ; or a print queue of the system, sent as a raw job (lp -o raw)
//     codigo=CP850            ; the printer's code page: CP850 (usual), CP858, CP860, CP1252
//     tabela=2                ; the page's number in the printer's ESC t command, when the
//                             ; printer numbers its pages differently
//     velocidade=9600         ; serial ports only
//
// The bytes reach the printer as they were built: a serial port is put in raw mode so that
// no line end is changed on the way.

#include "coupon.h"

#include <QByteArray>
#include <QString>

namespace rtx::output {

struct CouponSettings {
    QString iniFile; // where they were read, for the messages
    QString device;
    QString queue;
    CodePage codePage = CodePage::CP850;
    int table = -1;
    int baud = 0;
    QString problem; // a setting that could not be understood

    bool destinationSet() const { return !device.isEmpty() || !queue.isEmpty(); }
};

// Reads the [cupom] section of rotalix.ini in the installation folder.
CouponSettings readCouponSettings(const QString& folder);

// Sends a job. Gives an empty text when it went, else the message for the operator, which
// says what to do (how to set a destination, what could not be opened and why).
QString sendCoupon(const QByteArray& bytes, const CouponSettings& settings);

} // namespace rtx::output
