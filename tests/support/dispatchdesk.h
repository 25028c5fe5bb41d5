#pragma once
// The dispatch screen as a test drives it: the demo office, ANA PAULA logged in, the
// seam's answerer, the screen up and active; fields typed over and left with Tab, buttons
// pressed with their answers queued, rows read back as text.
//
//     class MyTest : public QObject, DispatchDesk { ... init() { begin(); } cleanup() { end(); } }

#include "dispatch/atendimento.h"
#include "registerdesk.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <memory>

namespace rtx::test {

inline const QString kDavila = QStringLiteral("D'AVILA ADVOGADOS");

struct DispatchDesk {
    std::unique_ptr<TestInstallation> inst;
    std::unique_ptr<ScriptedPrompter> prompts;
    QPointer<rtx::ui::Atendimento> screen;

    void begin(bool demo = true) {
        inst = std::make_unique<TestInstallation>(true, demo);
        prompts = std::make_unique<ScriptedPrompter>();
        if (inst->ok()) rtx::session::setInstallation(inst->installation());
    }
    void end() {
        delete screen.data();
        rtx::session::end();
        prompts.reset();
        inst.reset();
    }

    Store& store() { return inst->store(); }
    qint64 rows(const QString& table) { return store().count(table); }

    void open() {
        rtx::session::start({QStringLiteral("ANA PAULA"), {}, {}});
        screen = new rtx::ui::Atendimento;
        screen->show();
        activate();
    }
    // The screen as the active window again (after a popup of its own closed).
    void activate() {
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen));
    }

    // Adds lines to the installation's rotalix.ini, as the office sets a device.
    void appendIni(const QString& lines) {
        QFile f(QDir(inst->folder()).filePath(QStringLiteral("rotalix.ini")));
        QVERIFY(f.open(QIODevice::Append));
        f.write(lines.toUtf8());
    }

    template <class T = QWidget> T* get(const QString& name) { return control<T>(screen, name); }
    QString text(const QString& name) { return fieldText(screen, name); }
    // Several fields of the screen at once, "|" between them.
    QString fields(const QString& names) {
        QStringList out;
        for (const QString& name : names.split(u' '))
            out << text(name);
        return out.join(u'|');
    }

    // Into a field as the operator does: in, over its whole text (accents too), out with Tab.
    void type(const QString& name, const QString& typed) {
        QWidget* w = get(name);
        w->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
        if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit())
            combo->lineEdit()->selectAll();
        if (auto* memo = qobject_cast<QPlainTextEdit*>(w)) memo->selectAll();
        typeText(w, typed);
        QTest::keyClick(w, Qt::Key_Tab);
        QApplication::processEvents();
    }

    void click(const QString& name) { get<QAbstractButton>(name)->click(); }
    static void click(QWidget* window, const QString& name) { rtx::test::click(window, name); }

    // Clicks a button with the answers to its prompt and questions queued, after forgetting
    // what was shown before; gives the texts shown.
    QStringList press(const QString& button, std::initializer_list<bool> answers = {},
                      const QString& typed = {}) {
        script(*prompts, answers, typed);
        click(button);
        return prompts->texts();
    }

    QString clientPhone(const QString& name) {
        return store()
            .scalar(QStringLiteral("SELECT C8 FROM clientes WHERE C5 = ?"), {name})
            .toString();
    }

    // A new dispatch for D'Avila, found by his telephone, with a service picked in the
    // table, a status, BETO and the payment.
    void fillDispatch(const QString& payment) {
        click(QStringLiteral("Command4"));
        type(QStringLiteral("a4"), clientPhone(kDavila));
        onModal([](QWidget* table) {
            auto* grid = control<rtx::ui::MSFlexGrid>(table, QStringLiteral("Grid1"));
            pickRow(grid, gridRow(grid, QStringLiteral("ENTREGA ZONA SUL")));
        });
        click(QStringLiteral("Command19"));
        activate();
        type(QStringLiteral("ST"), QStringLiteral("A c"));
        type(QStringLiteral("A18"), QStringLiteral("BETO"));
        get<QComboBox>(QStringLiteral("A20"))->setCurrentText(payment);
    }

    // The one row a query gives ("table WHERE ..."), its columns as text, "|" between them,
    // a null as "NULL".
    QString onlyRow(const QString& from, const QString& columns, const QVariantList& params = {}) {
        Recordset row = store().open(QStringLiteral("SELECT * FROM ") + from, params);
        if (row.recordCount() != 1) return QStringLiteral("%1 rows").arg(row.recordCount());
        QStringList out;
        for (const QString& c : columns.split(u' '))
            out << (row.isNull(c) ? QStringLiteral("NULL") : row.text(c));
        return out.join(u'|');
    }
};

} // namespace rtx::test
