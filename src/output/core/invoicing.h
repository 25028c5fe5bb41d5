#pragma once
// The month's invoices as paper: which invoices a run makes (the clients chosen, each with
// his register's days or the company's), and each invoice laid out in pages with the
// company's letterhead, the client, one line per dispatch, the total in figures and in
// words, the due date and the PIX block (the QR code and the "copia e cola" text).
//
// This floor reads the finance core (the invoice and its receivables), the dispatches the
// receivables came from and the registers (company and client): the finance core itself
// never reads dispatch rows.

#include "finance/core/invoices.h"
#include "output/core/document.h"
#include "output/core/report.h"
#include "output/core/textlines.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace rtx::output {

// One line of an invoice.
struct InvoiceLine {
    QDate date;
    QString number; // the dispatch's, or the receivable's document
    QString route;  // "origin -> destination", or the receivable's description
    QString service;
    qint64 amount = 0;
};

// Everything an invoice prints.
struct InvoiceSheet {
    finance::Invoice invoice;
    // The company's letterhead.
    QString companyName, companyAddress, companyCnpj, companyPhone, companyEmail;
    // The client as his register has him (his name as the receivables have it when he has
    // no register).
    QString clientName, clientTaxNumber, clientAddress, clientEmail;
    QList<InvoiceLine> lines;
    QString pixKey;  // as the payload carries it; empty when the company has none
    QString pixName; // the beneficiary as the payload carries him
    QString payload; // the BR Code; empty without a key
    QString amountWords;
};

// Why a run cannot start: the company has no usable PIX key. Nothing when it has one.
std::optional<QString> invoicingProblem(Store& store);

// Makes the invoices of the clients named, each of his open receivables of the period that
// no invoice holds yet, in one unit of work; a client with none gets no invoice. Gives the
// invoices made, in the order of the names.
QList<finance::Invoice> makeInvoices(Store& store, const QStringList& clients, const QDate& from,
                                     const QDate& to, const QDate& today = QDate::currentDate());

// The sheet of an invoice; throws StoreError when there is no such invoice.
InvoiceSheet readInvoiceSheet(Store& store, const QString& code);

// The pages of an invoice, long texts broken by the measure given.
Document invoiceDocument(const InvoiceSheet& sheet, const TextMeasure* measure = nullptr);
// The lines of an invoice as report rows, for the preview's spreadsheet.
ReportData invoiceData(const InvoiceSheet& sheet);

// The folder of a month's invoices in the installation ("Faturas 03.2026") and the file of
// one invoice in it, named by the client's code and name and the invoice's number; the
// characters no file name may have are left out.
QString invoiceFolder(const QString& installation, const QDate& from);
QString invoiceFileName(const finance::Invoice& invoice);

} // namespace rtx::output
