#pragma once
// The preview window of a report: its pages as they will be printed, a page at a time, with
// its own print button, and the same pages saved as a PDF file or the rows as a spreadsheet.

#include "output/core/document.h"
#include "output/core/report.h"

#include <QDialog>
#include <QImage>

class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;

namespace rtx::ui {

class PageView;

class ReportPreview : public QDialog {
    Q_OBJECT
public:
    ReportPreview(output::ReportData data, output::Document document, QWidget* parent = nullptr);
    ~ReportPreview() override;

    const output::Document& document() const { return document_; }
    int pageCount() const { return int(document_.pages.size()); }
    void showPage(int page);
    // A page drawn at a number of pixels per millimetre (what the window shows at 100% is
    // about 3.8).
    QImage renderPage(int page, double dotsPerMm) const;

    // The buttons.
    void print();
    void savePdf();
    void saveSheet();

private:
    output::ReportData data_;
    output::Document document_;
    int page_ = 0;
    PageView* view_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QLabel* pageLabel_ = nullptr;
    QComboBox* zoom_ = nullptr;
    QPushButton* first_ = nullptr;
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* last_ = nullptr;

    void applyZoom();
    QString suggestedName(const QString& extension) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace rtx::ui
