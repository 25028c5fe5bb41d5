#include "reportcontrol.h"

#include "kit/dialogs.h"
#include "output/core/values.h"
#include "reportpainter.h"
#include "reportpreview.h"
#include "session/core/current.h"
#include "store/store.h"

#include <QWidget>

using namespace Qt::Literals::StringLiterals;

namespace rtx::ui {

ReportControl::ReportControl(QWidget* screen) : QObject(screen), screen_(screen) {
    setObjectName(u"Report1"_s);
}

QString ReportControl::folder() const {
    return folder_.isEmpty() ? session::installation().folder() : folder_;
}

std::optional<output::ReportData> ReportControl::read() {
    try {
        Store& store = store_ ? *store_ : Store::current();
        return definition_.read(store, folder());
    } catch (const output::LayoutError& e) {
        showError(screen_, e.text());
    } catch (const StoreError& e) {
        showError(screen_, e.text());
    }
    return std::nullopt;
}

bool ReportControl::run() {
    std::optional<output::ReportData> data = read();
    if (!data) return false;
    output::Document document = output::compose(*data, &fontMeasure());
    // A name in the layout that nothing answers to prints blank: said once, so that whoever
    // edited the file sees the mistake instead of a paper with a hole in it.
    const QStringList unknown = output::unknownNames(*data);
    if (!unknown.isEmpty())
        notice(screen_,
               u"O arquivo de relatório %1 tem campos que não existem e saem em branco:\n%2"_s.arg(
                   data->layout.file, unknown.join(u'\n')));
    auto* preview = new ReportPreview(std::move(*data), std::move(document), screen_);
    preview_ = preview;
    preview->show();
    return true;
}

} // namespace rtx::ui
