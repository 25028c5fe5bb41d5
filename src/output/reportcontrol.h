#pragma once
// The report control of a screen: the screen sets its data source, layout file, formulas
// and selection (output::ReportDefinition), and run() shows the report in its preview
// window, which has its own print button. The control keeps what was set between runs.
//
//     ReportControl* report = new ReportControl(this);   // once, in the screen
//     report->definition().setDataSource(u"clientes"_s);
//     report->definition().setLayoutFile(u"rela2.rpt"_s);
//     report->run();
//
// A missing or wrong layout file and a failure of the store are said to the operator
// through the dialog seam; the screen goes on.

#include "output/core/compose.h"
#include "output/core/report.h"
#include "output/reportpreview.h"

#include <QObject>
#include <QPointer>
#include <optional>

class QWidget;

namespace rtx {
class Store;
}

namespace rtx::ui {

class ReportControl : public QObject {
    Q_OBJECT
public:
    explicit ReportControl(QWidget* screen);

    output::ReportDefinition& definition() { return definition_; }
    const output::ReportDefinition& definition() const { return definition_; }

    // Where the rows and the layouts come from: by default the current store and the
    // installation's folder.
    void setStore(Store* store) { store_ = store; }
    void setFolder(const QString& folder) { folder_ = folder; }
    QString folder() const;

    // Action = 1: the report in its preview window. False, after a message, when it could
    // not be made.
    bool run();
    // The layout and the rows as a run reads them; nothing after a message.
    std::optional<output::ReportData> read();

    // The preview of the last run while it is open.
    ReportPreview* preview() const { return preview_; }

private:
    QWidget* screen_;
    output::ReportDefinition definition_;
    Store* store_ = nullptr;
    QString folder_;
    QPointer<ReportPreview> preview_;
};

} // namespace rtx::ui
