#pragma once
// The counter coupon of a dispatch: thirty lines for a narrow ESC/POS printer, built from the
// fields as the dispatch screen shows them (saved or not), in the printer's own code page.
//
// The bytes are: ESC @ (reset), ESC t n (the code page's table), ESC ! 8 (the printer's
// fixed-pitch font A in bold); then lines 1 to 29, each ended by a line feed (10); then
// line 30, the cut command ESC i (27 105), last of all. Field texts are written as typed:
// no cutting, no wrapping; a control character in a field is written as a blank so that a
// field can never send a printer command.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

namespace rtx::output {

// The screen's fields the coupon prints (A17, A8, a1, A5, ST, A20 and VE do not appear).
struct CouponFields {
    QString companyName;  // e1 of the company
    QString companyPhone; // e2
    QString number;       // CODIGO; empty for a dispatch not saved yet
    QString client;       // A6
    QString phone;        // a4
    QString address;      // A7
    QString pickupAddress, pickupContact, pickupPhone, pickupTask;         // A9, A10, A11, A12
    QString deliveryAddress, deliveryContact, deliveryPhone, deliveryTask; // A13 .. A16
    QString service;                                                       // A21
    QString returnTrip;                                                    // A22
    QString courier;                                                       // A18
    QString value; // A19, the client's value as shown
};

enum class CodePage { CP850, CP858, CP860, CP1252 };

// "CP850", "850", "cp-850"... ; nothing for a page this program does not know.
std::optional<CodePage> codePageNamed(const QString& name);
// The number of the page's table in the ESC t command of most ESC/POS printers.
int escPosTable(CodePage page);
// Text in a code page: a character the page lacks becomes '?', a control character a blank.
QByteArray encode(const QString& text, CodePage page);

// The text of lines 1 to 29 (line 30 is the cut), date and time those of `now`.
QStringList couponLines(const CouponFields& fields, const QDateTime& now);
// The whole job. table < 0: the usual table number of the code page.
QByteArray couponBytes(const CouponFields& fields, const QDateTime& now,
                       CodePage page = CodePage::CP850, int table = -1);

} // namespace rtx::output
